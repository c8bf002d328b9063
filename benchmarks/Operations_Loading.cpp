#include "Subject.h"

#include <QtCore/QFile>
#include <QtCore/QPluginLoader>
#include <QtCore/QTemporaryDir>

namespace {

// A copy, because the library that is measured elsewhere stays loaded; in /tmp, because the loader's cost
// depends on the length of the path.
class Loading final : public Operation
{
public:
    explicit Loading(const QString &file)
    {
        if (!QFile::copy(file, m_copy))
            qFatal("%s cannot be copied to %s", qUtf8Printable(file), qUtf8Printable(m_copy));
    }

    void run(qint64 calls) override
    {
        for (qint64 number = 0; number < calls; ++number) {
            QPluginLoader loader;
            // Or it would stay loaded.
            loader.setLoadHints({});
            loader.setFileName(m_copy);
            if (!loader.instance() || !loader.unload())
                qFatal("%s", qUtf8Printable(loader.errorString()));
        }
    }

private:
    QTemporaryDir m_folder{QStringLiteral("/tmp/XXXXXX")};
    QString m_copy = m_folder.filePath(QStringLiteral("plugin.so"));
};

void add(std::vector<Subject> &subjects, const QString &name, const QString &file)
{
    subjects.push_back({name, 1, [file] { return std::make_unique<Loading>(file); }});
}

}  // namespace

void addLoading(std::vector<Subject> &subjects)
{
    const QString name = QStringLiteral("load, instance, unload");
    add(subjects, name, QStringLiteral(PRODUCT_FILE));
    add(subjects, name + QStringLiteral("/floor"), QStringLiteral(BARE_PLUGIN_FILE));
}
