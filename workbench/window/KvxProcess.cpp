#include "KvxProcess.h"

#include "JsonStrings.h"

#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

KvxProcess::KvxProcess(QObject *parent) : QProcess(parent)
{
    CheckSystem::ProcessTree::prepare(*this);
    connect(this, &QProcess::started, this, [this] { m_tree.emplace().adopt(*this); });
    connect(this, &QProcess::finished, this, [this] { m_tree.reset(); });
}

KvxProcess::~KvxProcess()
{
    disconnect();
    end();
    // It must not be destroyed before its process has ended; a killed one does so at once.
    waitForFinished();
}

void KvxProcess::startKvx(const KvxSetup &setup, const QStringList &arguments)
{
    QStringList words = setup.wrapper;
    words << setup.kvx << arguments;
    const QString program = words.takeFirst();
    start(program, words);
}

void KvxProcess::interrupt()
{
    if (m_tree)
        m_tree->interrupt(*this);
}

void KvxProcess::end()
{
    if (m_tree)
        m_tree->end();
    kill();
}

KvxProcess *askKvx(const KvxSetup &setup, const QStringList &arguments, QObject *receiver,
                   const std::function<void(const KvxAnswer &answer)> &answered)
{
    auto *const process = new KvxProcess(receiver);
    const auto answer = [process, answered](const KvxAnswer &given) {
        process->disconnect(process->parent());
        process->deleteLater();
        answered(given);
    };
    QObject::connect(process, &QProcess::started, receiver, [process] { process->closeWriteChannel(); });
    QObject::connect(process, &QProcess::errorOccurred, receiver, [=](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            answer({KvxAnswer::noExitCode,
                    {},
                    KvxProcess::tr("kvx cannot be started: %1").arg(process->errorString())});
    });
    QObject::connect(process, &QProcess::finished, receiver, [=](int exitCode, QProcess::ExitStatus status) {
        if (status == QProcess::CrashExit) {
            answer({KvxAnswer::noExitCode,
                    {},
                    KvxProcess::tr("kvx %1 crashed: %2")
                        .arg(arguments.first(), CheckSystem::crashName(exitCode))});
            return;
        }
        QString problem = QString::fromUtf8(process->readAllStandardError()).trimmed();
        if (exitCode == 0)
            problem.clear();
        else if (problem.isEmpty())
            problem = KvxProcess::tr("kvx ended with exit code %1.").arg(exitCode);
        answer({exitCode, QString::fromUtf8(process->readAllStandardOutput()), problem});
    });
    process->startKvx(setup, arguments);
    return process;
}

void askKvxForScenario(const KvxSetup &setup, const QString &name, QObject *receiver,
                       const std::function<void(const QString &text, const QString &problem)> &answered)
{
    askKvx(setup, {u"check"_s, u"--explain"_s, name, u"--json"_s}, receiver,
           [answered](const KvxAnswer &answer) {
               const QJsonDocument document = QJsonDocument::fromJson(answer.output.toUtf8());
               answered(stringsOf(document["scenarios"_L1][0]["lines"_L1]).join(u'\n'), answer.problem);
           });
}
