#include "PlayedScenario.h"

#include "PluginFixture.h"
#include "Scenario.h"

using namespace Qt::StringLiterals;

KvxRun play(const QString &scenario)
{
    return runKvx({u"run"_s, u"-"_s, u"--plugin"_s, PluginFixture::builtPluginFile()}, scenario.toUtf8());
}

// instead.
QString playedText(const Round &round)
{
    if (!round.shortest)
        return u"no sequence deviates"_s;
    const QString deviating = scenarioText(*round.shortest);
    const KvxRun difference = play(deviating);
    if (difference.exitCode != 1 || !difference.errors.value(0).contains(u"expected"))
        return u"does not deviate:\n"_s + deviating + difference.errors.join(u'\n');
    SequenceResult mended = *round.shortest;
    mended.deviation->expectedLines.swap(mended.deviation->seenLines);
    const QString agreeing = scenarioText(mended);
    const KvxRun agreement = play(agreeing);
    if (agreement.exitCode != 0 || agreeing == deviating)
        return u"does not agree:\n"_s + agreeing + agreement.errors.join(u'\n');
    return {};
}
