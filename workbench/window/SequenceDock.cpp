#include "SequenceDock.h"

#include "SequenceExport.h"
#include "SequenceView.h"

#include <QtCore/QEvent>
#include <QtCore/QMimeData>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QTextDocument>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolTip>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int emptyMargin = 16;        // pixels
constexpr int mostToolTipText = 2000;  // characters

SequenceEntry sequenceEntry(const Entry &entry)
{
    return {entry.sequence, entry.time, entry.thread, entry.device, entry.receiver, entry.kind, entry.text};
}

QLabel *emptyText(QWidget *parent)
{
    auto *label =
        new QLabel(SequenceDock::tr("Select lines in the timeline: they are drawn here as a sequence "
                                    "diagram of host, device, receiver and mouse. Ctrl+A there selects "
                                    "all lines."),
                   parent);
    label->setObjectName(u"sequenceEmpty"_s);
    label->setAlignment(Qt::AlignCenter);
    label->setMargin(emptyMargin);
    label->setWordWrap(true);
    return label;
}

}  // namespace

SequenceDock::SequenceDock(QWidget *parent)
    : QWidget(parent),
      m_pages(new QStackedWidget(this)),
      m_view(new SequenceView(this)),
      m_message(new QLabel(this))
{
    m_view->setObjectName(u"sequenceView"_s);
    m_view->setAccessibleName(tr("Sequence diagram of the selected lines"));
    m_message->setObjectName(u"sequenceMessage"_s);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->hide();
    connect(m_view, &SequenceView::toolTipWanted, this, &SequenceDock::showToolTip);
    auto *bar = new QToolBar(this);
    addActions(bar);
    m_pages->addWidget(emptyText(this));
    m_pages->addWidget(m_view);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_message);
    draw();
}

void SequenceDock::addActions(QToolBar *bar)
{
    const auto add = [&](const QString &name, const QString &text, const QString &tip, auto *object,
                         auto function) {
        QAction *action = bar->addAction(text, object, function);
        action->setToolTip(tip);
        QWidget *button = bar->widgetForAction(action);
        button->setObjectName(name);
        button->setAccessibleName(tip);
        button->setFocusPolicy(Qt::TabFocus);
        m_actions.append(action);
    };
    add(u"zoomOut"_s, u"−"_s, tr("Zoom out (-)"), m_view, &SequenceView::zoomOut);
    add(u"zoomIn"_s, u"+"_s, tr("Zoom in (+)"), m_view, &SequenceView::zoomIn);
    add(u"originalSize"_s, tr("1:1"), tr("Original size (0)"), m_view, &SequenceView::resetZoom);
    add(u"fitWidth"_s, tr("Fit"), tr("Fit the width"), m_view, &SequenceView::fitWidth);
    bar->addSeparator();
    add(u"exportSequence"_s, tr("Export…"), tr("Save the diagram as an SVG or PNG file"), this,
        &SequenceDock::chooseFile);
    add(u"copySequence"_s, tr("Copy"), tr("Copy the diagram as a picture"), this, &SequenceDock::copy);
}

void SequenceDock::showEntries(const QList<Entry> &entries)
{
    m_diagram = {};
    for (const Entry &entry : entries)
        m_diagram.add(sequenceEntry(entry));
    m_message->hide();
    draw();
}

void SequenceDock::draw()
{
    const bool isEmpty = m_diagram.isEmpty();
    m_pages->setCurrentIndex(isEmpty ? 0 : 1);
    for (QAction *action : std::as_const(m_actions))
        action->setEnabled(!isEmpty);
    const bool isDark =
        palette().color(QPalette::Base).lightness() < palette().color(QPalette::Text).lightness();
    m_view->setPicture(m_diagram.bands(isDark ? SequencePalette::dark() : SequencePalette::light()));
}

void SequenceDock::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        draw();
    QWidget::changeEvent(event);
}

void SequenceDock::chooseFile()
{
    auto *dialog = new QFileDialog(this, tr("Export the diagram"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("Vector picture (*.svg)"), tr("Picture of pixels (*.png)")});
    dialog->setDefaultSuffix(u"svg"_s);
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString &filter) {
        dialog->setDefaultSuffix(filter.contains("*.png"_L1) ? u"png"_s : u"svg"_s);
    });
    connect(dialog, &QFileDialog::fileSelected, this, &SequenceDock::exportTo);
    dialog->open();
}

void SequenceDock::exportTo(const QString &file)
{
    say(writeSequence(exportedSvg(), file).value_or(tr("Saved as %1").arg(file)));
}

void SequenceDock::copy()
{
    const QByteArray svg = exportedSvg();
    auto *mime = new QMimeData;
    mime->setImageData(sequenceImage(svg));
    mime->setData(u"image/svg+xml"_s, svg);
    QGuiApplication::clipboard()->setMimeData(mime);
    say(tr("Copied as a picture"));
}

void SequenceDock::say(const QString &message)
{
    m_message->setText(message);
    m_message->show();
}

void SequenceDock::showToolTip(int y, const QPoint &place)
{
    // Rich text, so that no text can be taken for it, and long lines are broken.
    const QString text = m_diagram.textAt(y).left(mostToolTipText);
    QToolTip::showText(place, text.isEmpty() ? QString() : Qt::convertFromPlainText(text), this);
}
