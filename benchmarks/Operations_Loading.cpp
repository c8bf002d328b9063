#include "Operations.h"

#include <QtCore/QPluginLoader>

#include <cstdio>
#include <cstdlib>

namespace {

class Loading final : public Operation
{
public:
    explicit Loading(QString file) : m_file(std::move(file)) {}

    void run(qint64 times) override
    {
        for (qint64 number = 0; number < times; ++number) {
            QPluginLoader loader;
            loader.setLoadHints({});
            loader.setFileName(m_file);
            if (!loader.instance() || !loader.unload()) {
                std::fprintf(stderr, "measure: %s (%s); build it anew: ./dev build bench\n",
                             qUtf8Printable(m_file), qUtf8Printable(loader.errorString()));
                std::exit(2);
            }
        }
    }

private:
    QString m_file;
};

void add(std::vector<Subject> &subjects, Variant variant, const QString &file)
{
    subjects.push_back({QStringLiteral("loading/") + variantName(variant), 1,
                        [file] { return std::make_unique<Loading>(file); }});
}

}  // namespace

// Copies of their own: the libraries that are measured elsewhere stay loaded.
void addLoading(std::vector<Subject> &subjects)
{
    add(subjects, Variant::Product, QStringLiteral(LOADED_PRODUCT_FILE));
    add(subjects, Variant::Floor, QStringLiteral(EMPTY_FILE));
}
