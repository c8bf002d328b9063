#include "TimelineFile.h"

#include "Timeline.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *folderVariable = "KVX_TIMELINE_FOLDER";

// One for all timelines of the process. Without a buffer, so that a program that is killed leaves whole
// lines.
class TimelineFile
{
public:
    TimelineFile()
    {
        const QString program = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
        m_file.setFileName(
            QDir(qEnvironmentVariable(folderVariable))
                .filePath(u"%1-%2.jsonl"_s.arg(program).arg(QCoreApplication::applicationPid())));
        if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
            giveUp();
        writeLine(Timeline::jsonHeader());
    }

    void write(const TimelineEntry &entry)
    {
        const QMutexLocker locker(&m_mutex);
        writeLine(Timeline::jsonLine(entry));
    }

private:
    void writeLine(const QByteArray &line)
    {
        if (m_file.write(line + '\n') != line.size() + 1)
            giveUp();
    }

    void giveUp()
    {
        qFatal("%s: the timeline cannot be written to \"%s\" (%s)", folderVariable,
               qPrintable(m_file.fileName()), qPrintable(m_file.errorString()));
    }

    QMutex m_mutex;
    QFile m_file;
};

TimelineFile &fileOfTheProcess()
{
    static TimelineFile file;
    return file;
}

}  // namespace

void keepInTimelineFile(Timeline &timeline)
{
    if (!qEnvironmentVariableIsSet(folderVariable))
        return;
    TimelineFile &file = fileOfTheProcess();
    timeline.addLastingObserver([&file](const TimelineEntry &entry) { file.write(entry); });
}

void addToTimelineFile(const TimelineEntry &entry)
{
    if (qEnvironmentVariableIsSet(folderVariable))
        fileOfTheProcess().write(entry);
}
