#include "FaultRow.h"

using namespace Qt::StringLiterals;

namespace {

struct EffectWord
{
    const char *word;
    /// What is behind it in the line; null for nothing.
    const char *value;
};

constexpr EffectWord effectWords[] = {
    {"refuse", nullptr},
    {"drop", nullptr},
    {"delay", QT_TRANSLATE_NOOP("FaultRow", "milliseconds")},
    {"repeat", QT_TRANSLATE_NOOP("FaultRow", "how often")},
    {"alter", QT_TRANSLATE_NOOP("FaultRow", "other values")},
};

constexpr int always = 0;  // of the field for the times

}  // namespace

FaultRow::FaultRow(const QString &operation, QGridLayout *grid, QObject *parent)
    : QObject(parent),
      m_operation(operation),
      m_effect(new QComboBox(grid->parentWidget())),
      m_value(new QLineEdit(parentWidget())),
      m_times(new QSpinBox(parentWidget())),
      m_set(new QToolButton(parentWidget())),
      m_inForce(new QLabel(parentWidget())),
      m_problem(new QLabel(parentWidget()))
{
    const auto name = [&](QWidget *widget, const QString &part, const QString &accessibleName) {
        widget->setObjectName(u"fault%1_%2"_s.arg(part, operation));
        widget->setAccessibleName(accessibleName.arg(operation));
    };
    name(m_effect, u"Effect"_s, tr("Effect of a fault of %1"));
    name(m_value, u"Value"_s, tr("Value of a fault of %1"));
    name(m_times, u"Times"_s, tr("Times of a fault of %1"));
    name(m_set, u"Set"_s, tr("Set a fault of %1"));
    m_inForce->setObjectName(u"faultInForce_"_s + operation);
    m_problem->setObjectName(u"faultProblem_"_s + operation);

    // The words of the line, in every language.
    for (const EffectWord &effect : effectWords)
        m_effect->addItem(QLatin1StringView(effect.word));
    constexpr int mostTimes = 99999;
    m_times->setRange(always, mostTimes);
    m_times->setSpecialValueText(tr("always"));
    m_times->setSuffix(tr(" ×", "times"));
    m_times->setValue(1);
    m_set->setText(tr("Set"));
    for (QLabel *label : {m_inForce, m_problem}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->hide();
    }

    const int row = grid->rowCount();
    grid->addWidget(new QLabel(operation, parentWidget()), row, Operation);
    grid->addWidget(m_effect, row, Effect);
    grid->addWidget(m_value, row, Value);
    grid->addWidget(m_times, row, Times);
    grid->addWidget(m_set, row, Set);
    grid->addWidget(m_inForce, row + 1, Effect, 1, ColumnCount - Effect);
    grid->addWidget(m_problem, row + 2, Effect, 1, ColumnCount - Effect);

    connect(m_effect, &QComboBox::currentIndexChanged, this, &FaultRow::noteEffect);
    connect(m_set, &QToolButton::clicked, this, [this] { Q_EMIT lineEntered(line()); });
    connect(m_value, &QLineEdit::returnPressed, m_set, &QToolButton::click);
    noteEffect();
}

void FaultRow::noteEffect()
{
    const char *const value = effectWords[m_effect->currentIndex()].value;
    m_value->setEnabled(value);
    m_value->setPlaceholderText(value ? tr(value) : QString());
}

QString FaultRow::line() const
{
    QStringList words{u"fault"_s, m_operation, m_effect->currentText()};
    if (m_value->isEnabled())
        words << m_value->text().trimmed();
    if (m_times->value() == always)
        words << u"always"_s;
    else if (m_times->value() > 1)
        words << u"times"_s << QString::number(m_times->value());
    return words.join(u' ');
}

void FaultRow::showInForce(const QString &faults)
{
    m_inForce->setText(tr("In force: %1").arg(faults));
    m_inForce->setVisible(!faults.isEmpty());
}

void FaultRow::showProblem(const QString &problem)
{
    m_problem->setText(u"⚠ "_s + problem);
    m_problem->setVisible(!problem.isEmpty());
}
