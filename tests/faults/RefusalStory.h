#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What is seen of a story.
struct StorySeen
{
    QStringList lines;
    /// How many calls the receiver got that it may refuse, and how many it did.
    int calls = 0;
    int refusals = 0;
    /// Where a pending flag was not what its signals said; empty if nowhere.
    QString flagProblem;
    /// What the device shows at the end.
    QString values;
};

/// Plays all chapters on one device. The receiver refuses its n-th call, counted from 1 over all that it may refuse; 0
/// for none.
StorySeen playStory(int refusedCall);
