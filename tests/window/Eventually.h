#pragma once

#include "StartedEngine.h"

// What a window shows follows its child, so a check waits. The limit is for failures: QTRY_VERIFY's is too
// short for a slow machine, and its code makes warnings.

#define KVX_EVENTUALLY(condition)                                                                            \
    QVERIFY(QTest::qWaitFor([&] { return static_cast<bool>(condition); }, StartedEngine::limit))

#define KVX_EVENTUALLY_EQUAL(actual, expected)                                                               \
    do {                                                                                                     \
        static_cast<void>(QTest::qWaitFor([&] { return (actual) == (expected); }, StartedEngine::limit));    \
        QCOMPARE(actual, expected);                                                                          \
    } while (false)
