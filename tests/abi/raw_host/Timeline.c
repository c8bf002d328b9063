#include "Timeline.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <windows.h>

static char events[8192];
static char subject[128];
static bool *isReported;
static int deviations;

void happened(const char *format, ...)
{
    const size_t used = strlen(events);
    const char *separator = used ? "; " : "";
    if (used + sizeof("; ") >= sizeof(events)) {
        deviation("more events than are kept");
        return;
    }
    strcat(events, separator);
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(events + strlen(events), sizeof(events) - strlen(events), format, arguments);
    va_end(arguments);
}

void beginCall(Interface *interface, int slot)
{
    snprintf(subject, sizeof(subject), "slot %d of %s (%s)", slot, interface->name,
             interface->slots[slot].name);
    isReported = &interface->wasReported[slot];
    interface->wasCalled[slot] = true;
    events[0] = '\0';
}

void beginAction(const char *name)
{
    static bool isActionReported;
    snprintf(subject, sizeof(subject), "%s", name);
    isActionReported = false;
    isReported = &isActionReported;
    events[0] = '\0';
}

void deviation(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    vprintf(format, arguments);
    va_end(arguments);
    printf("\n");
    fflush(stdout);
    ++deviations;
}

int deviationCount(void)
{
    return deviations;
}

static const char *orNothing(const char *text)
{
    return *text ? text : "nothing";
}

// How many characters at the beginning are the same events.
static size_t sameAtBegin(const char *one, const char *other)
{
    size_t same = 0;
    for (size_t index = 0; one[index] && one[index] == other[index]; ++index) {
        if (index > 0 && one[index - 1] == ';')
            same = index + 1;
    }
    return same;
}

static size_t sameAtEnd(const char *one, const char *other)
{
    size_t same = 0;
    const size_t oneLength = strlen(one), otherLength = strlen(other);
    for (size_t index = 1; index <= oneLength && index <= otherLength; ++index) {
        if (one[oneLength - index] != other[otherLength - index])
            break;
        if (one[oneLength - index] == ';')
            same = index;
    }
    return same;
}

void expect(const char *expected)
{
    if (strcmp(events, expected) != 0 && !*isReported) {
        *isReported = true;
        const size_t begin = sameAtBegin(events, expected);
        const size_t end = sameAtEnd(events + begin, expected + begin);
        char found[sizeof(events)], wanted[sizeof(events)];
        snprintf(found, strlen(events) - begin - end + 1, "%s", events + begin);
        snprintf(wanted, strlen(expected) - begin - end + 1, "%s", expected + begin);
        // The verb once is enough.
        const size_t verb = strlen("answers ");
        const bool areAnswers =
            strncmp(found, "answers ", verb) == 0 && strncmp(wanted, "answers ", verb) == 0;
        deviation("%s: %s%s, not %s", subject, begin || end ? "among others " : "", orNothing(found),
                  orNothing(areAnswers ? wanted + verb : wanted));
    }
    events[0] = '\0';
}

static LONG WINAPI reportCrash(EXCEPTION_POINTERS *exception)
{
    deviation("%s: a crash, 0x%lx, after %s", subject, exception->ExceptionRecord->ExceptionCode,
              orNothing(events));
    ExitProcess(exitCrash);
}

void reportCrashes(void)
{
    SetUnhandledExceptionFilter(reportCrash);
}
