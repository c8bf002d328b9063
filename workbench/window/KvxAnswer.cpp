#include "KvxAnswer.h"

void askKvx(const Engine::Setup &setup, const QStringList &arguments, QObject *receiver,
            const std::function<void(const QString &output, const QString &problem)> &answer)
{
    auto *process = new QProcess(receiver);
    QObject::connect(process, &QProcess::errorOccurred, receiver, [process, answer](QProcess::ProcessError) {
        process->disconnect();
        process->deleteLater();
        answer({}, process->errorString());
    });
    QObject::connect(process, &QProcess::finished, receiver, [process, answer](int exitCode) {
        process->disconnect();
        process->deleteLater();
        const QString output = QString::fromUtf8(process->readAllStandardOutput());
        const QString problem = QString::fromUtf8(process->readAllStandardError()).trimmed();
        exitCode == 0 ? answer(output, {}) : answer({}, problem);
    });
    QStringList words = setup.wrapper;
    words << setup.kvx << arguments;
    const QString program = words.takeFirst();
    process->start(program, words);
}
