#include "FuzzTarget.h"
#include "PluginInspection.h"

#include <QtCore/QCborMap>
#include <QtCore/QCborValue>
#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

using Outcome = PluginJudgement::Outcome;

constexpr int olderQt = 0x060402;
constexpr int newerQt = 0x060802;

// JSON text, or the form in which a library holds it.
QJsonObject objectOf(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    return document.isNull() ? QCborValue::fromCbor(bytes).toMap().toJsonObject() : document.object();
}

PluginDemands demands(int qtVersion, bool isDebugBuild, bool mustMatchBuildType)
{
    return {u"com.orvane.KVX.Plugin.LogicalDevice."_s, qtVersion, isDebugBuild, mustMatchBuildType};
}

PluginJudgement judge(const QJsonObject &metaData, const PluginDemands &demands)
{
    const QString file = u"plugin"_s;
    PluginJudgement judgement = judgeMetadata(file, metaData, demands);
    mustHold(judgement.isLoadable() == judgement.reason.isEmpty(), "there is a reason for each refusal");
    mustHold(judgement.isLoadable() || judgement.reason.startsWith(u"\"plugin\" "_s),
             "the reason names the file");
    mustHold(isOneLine(judgement.reason), "the reason is one line");
    mustHold(judgement.outcome == Outcome::Loadable || judgement.outcome == Outcome::ForeignIid ||
                 judgement.outcome == Outcome::OtherQtVersion ||
                 (judgement.outcome == Outcome::OtherBuildType && demands.mustMatchBuildType),
             "metadata tells IID, version and build type");
    const bool isForeign = !metaData.value("IID"_L1).toString().startsWith(demands.iidPrefix);
    mustHold((judgement.outcome == Outcome::ForeignIid) == isForeign, "the IID tells a foreign plugin");
    return judgement;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QJsonObject metaData =
        objectOf(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    const bool loadsInNewer = judge(metaData, demands(newerQt, false, false)).isLoadable();
    const bool loadsInOlder = judge(metaData, demands(olderQt, false, false)).isLoadable();
    mustHold(loadsInNewer || !loadsInOlder, "a newer Qt loads what an older one does");

    const bool loadsInRelease = judge(metaData, demands(newerQt, false, true)).isLoadable();
    const bool loadsInDebug = judge(metaData, demands(newerQt, true, true)).isLoadable();
    mustHold(!loadsInRelease || !loadsInDebug, "no plugin is both a debug and a release build");
    mustHold((loadsInRelease || loadsInDebug) == loadsInNewer, "every plugin is one of the two");
    return 0;
}
