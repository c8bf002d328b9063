#include "FuzzTarget.h"
#include "PluginInspection.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

using Outcome = PluginJudgement::Outcome;

// The same name for all inputs: Qt's plugin loader keeps nothing of a file that no loader has open.
const QString &fileName()
{
    static const QTemporaryDir folder(QDir::temp().filePath(u"fuzz-XXXXXX"_s));
    static const QString name = folder.filePath(QStringLiteral("library" KVX_LIBRARY_SUFFIX));
    return name;
}

void write(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    QFile file(fileName());
    mustHold(file.open(QFile::WriteOnly | QFile::Truncate) && file.write(bytes) == bytes.size(),
             "the input can be written to a file");
}

bool isJudgedByMetadata(Outcome outcome)
{
    return outcome == Outcome::Loadable || outcome == Outcome::ForeignIid ||
           outcome == Outcome::OtherQtVersion || outcome == Outcome::OtherBuildType;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    write(data, size);
    const PluginInspection inspection = inspectPlugin(fileName());
    const PluginJudgement &judgement = inspection.judgement;
    const LibraryFile &contents = inspection.contents;

    mustHold(judgement.isLoadable() == judgement.reason.isEmpty(), "there is a reason for each refusal");
    mustHold(judgement.isLoadable() || judgement.reason.startsWith(u'"' + fileName() + u"\" "_s),
             "the reason names the file");
    mustHold(isOneLine(judgement.reason), "the reason is one line");
    mustHold(isJudgedByMetadata(judgement.outcome) == !inspection.metaData.isEmpty(),
             "who has metadata is judged by it");
    mustHold(inspection.metaData.isEmpty() ||
                 (contents.defect.isEmpty() && !contents.pluginMetadata.isEmpty()),
             "metadata is read of sound plugins only");
    return 0;
}
