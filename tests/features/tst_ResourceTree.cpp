#include "PluginFixture.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPluginLoader>
#include <QtTest/QTest>

#include <dlfcn.h>

namespace {

struct ResourceData
{
    int version = 0;
    const uchar *tree = nullptr;
    const uchar *names = nullptr;
    const uchar *contents = nullptr;

    bool operator==(const ResourceData &other) const
    {
        return version == other.version && tree == other.tree && names == other.names &&
               contents == other.contents;
    }
};

QList<ResourceData> &registered()
{
    static QList<ResourceData> list;
    return list;
}

QList<ResourceData> &unregistered()
{
    static QList<ResourceData> list;
    return list;
}

// Calls Qt's own function.
bool pass(const char *symbol, const ResourceData &data)
{
    using Function = bool (*)(int, const uchar *, const uchar *, const uchar *);
    const auto function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
    return function(data.version, data.tree, data.names, data.contents);
}

// Nodes have 22 bytes in format 3. The last 8 are a date.
QByteArray node(const ResourceData &data, int index)
{
    constexpr qsizetype size = 22;
    constexpr qsizetype dateSize = 8;
    return QByteArray(reinterpret_cast<const char *>(data.tree) + size * index, size - dateSize).toHex(' ');
}

}  // namespace

// NOLINTBEGIN(misc-use-internal-linkage)
// The dynamic linker finds the program's functions before those of Qt, so the library calls these.
Q_DECL_EXPORT bool qRegisterResourceData(int version, const uchar *tree, const uchar *names,
                                         const uchar *contents);
Q_DECL_EXPORT bool qUnregisterResourceData(int version, const uchar *tree, const uchar *names,
                                           const uchar *contents);

bool qRegisterResourceData(int version, const uchar *tree, const uchar *names, const uchar *contents)
{
    registered().append({version, tree, names, contents});
    return pass("_Z21qRegisterResourceDataiPKhS0_S0_", registered().constLast());
}

bool qUnregisterResourceData(int version, const uchar *tree, const uchar *names, const uchar *contents)
{
    unregistered().append({version, tree, names, contents});
    return pass("_Z23qUnregisterResourceDataiPKhS0_S0_", unregistered().constLast());
}
// NOLINTEND(misc-use-internal-linkage)

class tst_ResourceTree : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneTreeIsRegisteredWhileTheLibraryIsLoaded();
};

void tst_ResourceTree::oneTreeIsRegisteredWhileTheLibraryIsLoaded()
{
    registered().clear();
    unregistered().clear();
    QPluginLoader loader;
    loader.setLoadHints({});
    loader.setFileName(PluginFixture::builtPluginFile());
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QCOMPARE(registered().size(), qsizetype(1));
    const ResourceData data = registered().constFirst();
    QCOMPARE(data.version, 3);
    // Name, flags, number of children, first child; and of a file: name, flags, territory, language, content.
    QCOMPARE(node(data, 0), QByteArray("00 00 00 00 00 02 00 00 00 01 00 00 00 01"));
    QCOMPARE(node(data, 1), QByteArray("00 00 00 00 00 02 00 00 00 01 00 00 00 02"));
    QCOMPARE(node(data, 2), QByteArray("00 00 00 58 00 00 00 00 00 01 00 00 00 00"));
    QCOMPARE(unregistered().size(), qsizetype(0));
    QVERIFY(loader.unload());
    QCOMPARE(registered().size(), qsizetype(1));
    QCOMPARE(unregistered(), QList<ResourceData>({data}));
}

QTEST_GUILESS_MAIN(tst_ResourceTree)
#include "tst_ResourceTree.moc"
