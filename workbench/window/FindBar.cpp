#include "FindBar.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

FindBar::FindBar(QWidget *parent) : QWidget(parent), m_text(new QLineEdit(this)), m_result(new QLabel(this))
{
    m_text->setObjectName(u"findText"_s);
    m_text->setAccessibleName(tr("Find"));
    m_text->setPlaceholderText(tr("Find"));
    m_text->setClearButtonEnabled(true);
    m_result->setObjectName(u"findResult"_s);
    m_result->setAccessibleDescription(tr("Result of the search"));

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_text);
    const auto addButton = [this, layout](const QString &name, QStyle::StandardPixmap icon,
                                          const QString &text, auto &&act) {
        auto *button = new QToolButton(this);
        button->setObjectName(name);
        button->setIcon(style()->standardIcon(icon));
        button->setToolTip(text);
        button->setAccessibleName(text);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, this, act);
        layout->addWidget(button);
    };
    addButton(u"findPrevious"_s, QStyle::SP_ArrowUp, tr("Find previous"), &FindBar::previousWanted);
    addButton(u"findNext"_s, QStyle::SP_ArrowDown, tr("Find next"), &FindBar::nextWanted);
    addButton(u"findClose"_s, QStyle::SP_TitleBarCloseButton, tr("Close the search"), &FindBar::dismiss);
    layout->addWidget(m_result, 1);

    connect(m_text, &QLineEdit::textChanged, this, &FindBar::textChanged);
    hide();
}

void FindBar::open()
{
    show();
    m_text->setFocus(Qt::ShortcutFocusReason);
    m_text->selectAll();
}

void FindBar::dismiss()
{
    hide();
    Q_EMIT closed();
}

QString FindBar::text() const
{
    return m_text->text();
}

void FindBar::setResult(const QString &result)
{
    m_result->setText(result);
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        dismiss();
    else if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QWidget::keyPressEvent(event);
    else if (event->modifiers().testFlag(Qt::ShiftModifier))
        Q_EMIT previousWanted();
    else
        Q_EMIT nextWanted();
}
