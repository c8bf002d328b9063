#include "Lines.h"
#include "Sequence.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;
using Route = Step::Route;

QString receiverText(int receiver)
{
    return receiver == 0 ? u"first receiver"_s : u"second receiver"_s;
}

QString physicalText(Physical physical)
{
    if (const std::optional<int> receiver = receiverOf(physical))
        return receiverText(*receiver);
    return physical == Physical::NoReceiver ? u"no receiver"_s : u"null"_s;
}

QString answersText(const ReceiverAnswers &answers)
{
    const ReceiverAnswers sane;
    QStringList texts;
    const auto add = [&](const char *name, auto ReceiverAnswers::*answer) {
        if (answers.*answer != sane.*answer)
            texts.append(QString::fromLatin1(name) + u'=' + Model::streamed(answers.*answer));
    };
    add("firmwareVersion", &ReceiverAnswers::firmwareVersion);
    add("hasBatteryLevel", &ReceiverAnswers::hasBatteryLevel);
    add("batteryLevel", &ReceiverAnswers::batteryLevel);
    add("statusValue", &ReceiverAnswers::statusValue);
    add("deviceValue", &ReceiverAnswers::deviceValue);
    add("levelValue", &ReceiverAnswers::levelValue);
    add("isSmartPointerSupported", &ReceiverAnswers::isSmartPointerSupported);
    add("hasReportRateInfo", &ReceiverAnswers::hasReportRateInfo);
    add("acceptsRequests", &ReceiverAnswers::acceptsRequests);
    add("forwardedResult", &ReceiverAnswers::forwardedResult);
    const QString rates = Model::argumentText(&answers.reportRateInfo);
    if (rates != Model::argumentText(&sane.reportRateInfo))
        texts.append(u"reportRateInfo="_s + rates);
    return texts.isEmpty() ? u"sane answers"_s : texts.join(u", "_s);
}

QString calledOn(const Step &step)
{
    switch (step.kind) {
    case Kind::ChangeReceiver:
    case Kind::ReceiverDpiMinChanged:
    case Kind::ReceiverDpiMaxChanged:
        return u'[' + receiverText(step.receiver) + u"] "_s;
    case Kind::Initialize:
    case Kind::DeliverQueuedCalls:
        return {};
    default:
        return u"[%1] "_s.arg(deviceIds.at(static_cast<std::size_t>(step.slot)));
    }
}

QString callWithArguments(const Step &step)
{
    const QString name = QString::fromLatin1(nameOf(step.kind));
    if (step.kind == Kind::CreateDevice)
        return name + u'(' + physicalText(step.physical) + u')';
    if (step.kind == Kind::ChangeReceiver)
        return name + u'(' + answersText(step.answers) + u')';
    return callText(step);
}

QString routeText(const Step &step)
{
    switch (step.route) {
    case Route::OtherThread:
        return u" from another thread"_s;
    case Route::InsideRequest:
        return u" inside the next request to the "_s + receiverText(step.receiver);
    case Route::Direct:
        break;
    }
    return {};
}

QString indented(const QStringList &lines)
{
    return lines.isEmpty() ? u"  nothing\n"_s : u"  "_s + lines.join(u"\n  "_s) + u'\n';
}

}  // namespace

QString SequenceResult::text() const
{
    QStringList lines;
    for (const StepPointer &step : steps)
        lines.append(calledOn(*step) + callWithArguments(*step) + routeText(*step));
    if (isUnloaded)
        lines.append(u"the library is unloaded"_s);
    QString all = u"operations:\n"_s + indented(lines);
    if (!difference)
        return all;
    if (difference->expectedLines != difference->seenLines)
        all += u"expected of the last one:\n"_s + indented(difference->expectedLines) + u"seen:\n"_s +
               indented(difference->seenLines);
    if (!difference->getters.isEmpty())
        all += u"getters after it:\n"_s + indented(difference->getters);
    return all;
}
