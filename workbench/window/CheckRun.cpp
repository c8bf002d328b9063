#include "CheckRun.h"

#include "CheckReport.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isVerdict(const QString &word)
{
    const QList<Verdict> verdicts = allVerdicts();
    return std::any_of(verdicts.cbegin(), verdicts.cend(),
                       [&](Verdict verdict) { return wordOf(verdict) == word; });
}

}  // namespace

CheckRun::CheckRun(QObject *parent) : QObject(parent)
{
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &CheckRun::readOutput);
    connect(&m_process, &QProcess::finished, this, &CheckRun::takeEnd);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT ended({},
                         tr("%1 cannot be started: %2").arg(m_process.program(), m_process.errorString()));
    });
}

void CheckRun::start(const KvxSetup &setup, const CheckWish &wish)
{
    if (isRunning())
        return;
    m_isCancelled = false;
    m_isListing = false;
    m_folder.emplace();
    QStringList words{u"check"_s, setup.pluginFile};
    words << wish.words << u"--level"_s << wish.level;
    if (wish.jobs > 0)
        words << u"--jobs"_s << QString::number(wish.jobs);
    words << u"--json"_s << fileFor("report.json") << u"--html"_s << htmlFile();
    m_process.startKvx(setup, words);
}

void CheckRun::cancel()
{
    if (m_process.state() != QProcess::Running)
        return;
    if (std::exchange(m_isCancelled, true))
        m_process.end();
    else
        m_process.interrupt();
}

void CheckRun::readOutput()
{
    while (m_process.canReadLine())
        takeLine(QString::fromUtf8(m_process.readLine()).trimmed());
}

// The plan, then a line for each verdict; the first empty line ends them.
void CheckRun::takeLine(const QString &line)
{
    if (line.startsWith("plan "_L1)) {
        m_isListing = true;
        Q_EMIT planned(line.section(u' ', 1, 1, QString::SectionSkipEmpty).toInt());
        return;
    }
    m_isListing = m_isListing && !line.isEmpty();
    if (!m_isListing)
        return;
    constexpr qsizetype wordWidth = 11;
    const QString word = line.first(std::min(wordWidth, line.size())).trimmed();
    if (isVerdict(word))
        Q_EMIT verdictCame(line.sliced(wordWidth), word);
}

void CheckRun::takeEnd()
{
    readOutput();
    QFile file(fileFor("report.json"));
    QJsonObject report;
    if (file.open(QIODevice::ReadOnly))
        report = QJsonDocument::fromJson(file.readAll()).object();
    Q_EMIT ended(report, report.isEmpty() ? problem() : QString());
}

QString CheckRun::problem()
{
    if (m_isCancelled)
        return tr("The check was ended before it wrote its report.");
    QString errors = QString::fromUtf8(m_process.readAllStandardError()).trimmed();
    if (!errors.isEmpty())
        return errors;
    return tr("The check ended without a report, with exit code %1.").arg(m_process.exitCode());
}
