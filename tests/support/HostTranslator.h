#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

#include <functional>

/// A translator of the host's that translates nothing. Installed as long as it lives.
class HostTranslator : public QTranslator
{
public:
    /// whenAsked runs from inside each question for a text of the device.
    explicit HostTranslator(std::function<void()> whenAsked) : m_whenAsked(std::move(whenAsked))
    {
        QCoreApplication::installTranslator(this);
    }

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char * /*sourceText*/, const char * /*disambiguation*/,
                      int /*n*/) const override
    {
        if (qstrcmp(context, "LogicalDevice") == 0)
            m_whenAsked();
        return {};
    }

private:
    std::function<void()> m_whenAsked;
};
