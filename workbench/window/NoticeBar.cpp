#include "NoticeBar.h"

#include "EndText.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

NoticeBar::NoticeBar(Engine *engine, SessionWatch *watch, QWidget *parent)
    : QToolBar(parent),
      m_engine(engine),
      m_watch(watch),
      m_content(new QWidget),
      m_text(new QLabel),
      m_stop(new QToolButton),
      m_detailsButton(new QToolButton),
      m_details(new QPlainTextEdit)
{
    setObjectName("noticeBar"_L1);
    setWindowTitle(tr("Notice"));
    setMovable(false);
    toggleViewAction()->setVisible(false);

    auto *icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    m_text->setObjectName("noticeText"_L1);
    m_text->setAccessibleDescription(tr("Notice"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_stop->setObjectName("noticeStop"_L1);
    m_stop->setText(tr("Stop"));
    connect(m_stop, &QToolButton::clicked, engine, &Engine::stop);
    auto *startAgain = new QToolButton;
    startAgain->setObjectName("startAgain"_L1);
    startAgain->setText(tr("Start Again"));
    connect(startAgain, &QToolButton::clicked, this, &NoticeBar::startWanted);
    m_detailsButton->setObjectName("noticeDetailsButton"_L1);
    m_detailsButton->setText(tr("Details"));
    m_detailsButton->setCheckable(true);
    m_details->setObjectName("noticeDetails"_L1);
    m_details->setAccessibleName(tr("What the child wrote to its standard error"));
    m_details->setReadOnly(true);
    constexpr int detailLines = 8;
    m_details->setMaximumHeight(detailLines * m_details->fontMetrics().lineSpacing());
    m_details->hide();
    connect(m_detailsButton, &QToolButton::toggled, this, [this](bool isChecked) {
        m_details->setVisible(isChecked);
        fitHeight();
    });

    auto *layout = new QVBoxLayout(m_content);
    auto *row = new QHBoxLayout;
    row->addWidget(icon);
    row->addWidget(m_text, 1);
    for (QToolButton *button : {m_detailsButton, m_stop, startAgain}) {
        button->setFocusPolicy(Qt::StrongFocus);
        row->addWidget(button);
    }
    layout->addLayout(row);
    layout->addWidget(m_details);
    addWidget(m_content);
    hide();

    connect(engine, &Engine::started, this, &QWidget::hide);
    connect(engine, &Engine::ended, this, &NoticeBar::showEnd);
    connect(watch, &SessionWatch::changed, this, &NoticeBar::showSilence);
}

void NoticeBar::showEnd(const EngineEnd &end)
{
    m_saysSilence = false;
    m_stop->hide();
    const bool isInText = end.kind == EngineEnd::Kind::Unloadable || end.kind == EngineEnd::Kind::NotStarted;
    // Without a call there is no timeline.
    const QString text =
        end.lastCall.isEmpty() ? endText(end) : tr("%1 The timeline is kept.").arg(endText(end));
    say(text, isInText ? QString() : end.errorText);
}

void NoticeBar::showSilence()
{
    if (!m_watch->isSilent()) {
        if (std::exchange(m_saysSilence, false))
            hide();
        return;
    }
    m_saysSilence = true;
    m_stop->show();
    const QString call = m_engine->lastCall();
    say(call.isEmpty() ? tr("The library does not answer.")
                       : tr("The library does not answer. The last call: %1.").arg(call),
        {});
}

void NoticeBar::say(const QString &text, const QString &details)
{
    m_text->setText(text);
    m_details->setPlainText(details);
    m_detailsButton->setVisible(!details.isEmpty());
    if (details.isEmpty())
        m_detailsButton->setChecked(false);
    fitHeight();
    show();
}

void NoticeBar::resizeEvent(QResizeEvent *event)
{
    QToolBar::resizeEvent(event);
    fitHeight();
}

// A tool bar takes the height that a text of several lines might need.
void NoticeBar::fitHeight()
{
    // Before the content is shown it needs none.
    m_content->setFixedHeight(std::max(0, m_content->layout()->totalHeightForWidth(contentsRect().width())));
}
