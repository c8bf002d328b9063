// Functions of Qt's that take what differs between the C++ library that Qt was built with and ours: a
// std::initializer_list has two pointers there and a pointer and a count here, and a std::future is another
// object. What Qt's DLL exports cannot be called with them; these are called in its place. A program calls
// what it imports through a variable, whose name has __imp_ in front.

#include <QtCore/QCborMap>
#include <QtCore/QCborValue>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QThread>

#include <future>
#include <new>

namespace {

template <typename Value>
using List = std::initializer_list<Value>;

// The list is passed by address, as is any argument larger than eight bytes. A constructor returns the
// object's address.
QJsonArray *constructArray(QJsonArray *array, const List<QJsonValue> &values)
{
    QJsonArray made;
    for (const QJsonValue &value : values)
        made.append(value);
    return new (array) QJsonArray(std::move(made));
}

template <typename Map>
Map *constructMap(Map *map, const List<std::pair<typename Map::key_type, typename Map::mapped_type>> &values)
{
    Map made;
    for (const auto &[key, value] : values)
        made.insert(key, value);
    return new (map) Map(std::move(made));
}

class FutureThread final : public QThread
{
public:
    explicit FutureThread(std::future<void> &&future) : m_future(std::move(future)) {}

    // A thread that QThread::create() made may be deleted while it runs, others may not.
    ~FutureThread() override
    {
        requestInterruption();
        quit();
        wait();
    }

    Q_DISABLE_COPY_MOVE(FutureThread)

private:
    void run() override { m_future.get(); }

    std::future<void> m_future;
};

QThread *createThread(std::future<void> &&future)
{
    return new FutureThread(std::move(future));
}

}  // namespace

#define REPLACE_IMPORT(variable, function, name)                                                             \
    extern decltype(&function) const variable asm("__imp_" name);                                            \
    decltype(&function) const variable = function;

extern "C" {

REPLACE_IMPORT(importedJsonArray, constructArray,
               "??0QJsonArray@@QEAA@V?$initializer_list@VQJsonValue@@@std@@@Z")
REPLACE_IMPORT(importedJsonObject, constructMap<QJsonObject>,
               "??0QJsonObject@@QEAA@V?$initializer_list@U?$pair@VQString@@VQJsonValue@@@__1@std@@@std@@@Z")
REPLACE_IMPORT(importedCborMap, constructMap<QCborMap>,
               "??0QCborMap@@QEAA@V?$initializer_list@U?$pair@VQCborValue@@V1@@__1@std@@@std@@@Z")
REPLACE_IMPORT(importedThread, createThread,
               "?createThreadImpl@QThread@@CAPEAV1@$$QEAV?$future@X@__1@std@@@Z")

}  // extern "C"
