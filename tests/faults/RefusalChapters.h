#pragma once

#include <QtCore/QString>

#include <functional>
#include <vector>

class HostedDevice;

/// One call that the receiver refuses, and what is then seen of its chapter.
struct Refusal
{
    const char *refused;
    QString lines;
};

/// A part of the story. At its end the mouse has settled all requests, so a refusal leaves no trace in the next one.
struct Chapter
{
    const char *name;
    std::vector<std::function<void(HostedDevice &)>> steps;
    /// What is seen when nothing is refused.
    QString lines;
    /// One for each call that the receiver may refuse, in their order.
    std::vector<Refusal> refusals;
};

/// One long story: a start, all kinds of requests one after the other and all at once, confirmations that agree and
/// that do not, reports.
const std::vector<Chapter> &chapters();
