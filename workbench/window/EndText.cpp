#include "EndText.h"

#include <QtCore/QCoreApplication>

namespace {

struct EndText
{
    Q_DECLARE_TR_FUNCTIONS(EndText)
};

QString placeOf(const EngineEnd &end)
{
    return end.lastCall.isEmpty() ? EndText::tr("before the first call")
                                  : EndText::tr("in %1").arg(end.lastCall);
}

}  // namespace

QString endText(const EngineEnd &end)
{
    switch (end.kind) {
    case EngineEnd::Kind::Finished:
        return EndText::tr("The session has ended.");
    case EngineEnd::Kind::Stopped:
        return end.lastCall.isEmpty()
                   ? EndText::tr("The session was stopped.")
                   : EndText::tr("The session was stopped. The last call: %1.").arg(end.lastCall);
    case EngineEnd::Kind::Unloadable:
        return EndText::tr("The library cannot be loaded: %1.").arg(end.errorText);
    case EngineEnd::Kind::NotStarted:
        return EndText::tr("kvx cannot be started: %1.").arg(end.errorText);
    case EngineEnd::Kind::Crashed:
        break;
    }
    return end.crash.isEmpty()
               ? EndText::tr("kvx ended with exit code %1 %2.").arg(end.exitCode).arg(placeOf(end))
               : EndText::tr("The library crashed (%1) %2.").arg(end.crash, placeOf(end));
}
