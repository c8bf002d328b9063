#include "ReportFile.h"

#include <QtCore/QSaveFile>

using namespace Qt::StringLiterals;

namespace {

// What was written in part has no error yet; the next part has it, such as a disk that is full.
bool writeAll(QIODevice &device, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const qint64 written = device.write(content.data(), content.size());
        if (written <= 0)
            return false;
        content = content.sliced(written);
    }
    return true;
}

}  // namespace

std::optional<QString> writeReportFile(const QString &file, const QByteArray &content)
{
    QSaveFile saved(file);
    if (saved.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && writeAll(saved, content) &&
        saved.commit())
        return std::nullopt;
    return u"%1 cannot be written: %2"_s.arg(file, saved.errorString());
}
