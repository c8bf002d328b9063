#pragma once

#include <QtCore/QStringList>

#include <random>

struct SimulatedMouse;

/// Draws what a host, a receiver and a hand do with a started mouse, as commands of a scenario. The same seed draws the
/// same on every system.
class RandomSteps
{
public:
    explicit RandomSteps(quint32 seed) : m_engine(seed) {}

    struct Step
    {
        QStringList commands;
        /// A request is refused or a report is lost, so the device cannot know the mouse's state before the mouse reports
        /// it again.
        bool losesTrack = false;
    };
    /// What comes next for a mouse in this state.
    Step next(const SimulatedMouse &mouse);
    /// The mouse reports everything that a request can change.
    static QStringList stateReports(const SimulatedMouse &mouse);

private:
    int upTo(int last);  // 0 to last
    bool chance(int percent);
    template <typename List>
    auto oneOf(const List &list)
    {
        return list[static_cast<typename List::size_type>(upTo(static_cast<int>(list.size()) - 1))];
    }

    QString request(const SimulatedMouse &mouse, bool isAlone);
    QString slotValue(const SimulatedMouse &mouse);
    QString offeredRate(const SimulatedMouse &mouse);
    QString route();
    Step requestsTogether(const SimulatedMouse &mouse);
    Step faultyRequest(const SimulatedMouse &mouse);
    Step lostReport(const SimulatedMouse &mouse);
    Step changeOfTheMouse(const SimulatedMouse &mouse);
    Step changeOfTheActiveSlot(const SimulatedMouse &mouse);
    Step hand(const SimulatedMouse &mouse);
    Step otherCall();

    // Its numbers are the same everywhere, in contrast to those of the library's distributions.
    std::mt19937 m_engine;
    // Of slot 1, no two of them alike.
    int m_ownValue = 0;
};
