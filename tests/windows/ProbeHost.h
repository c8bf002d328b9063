#pragma once

/// Adds a line to what the program keeps about the calling thread.
void note(const char *event);

/// Whether the program has asked for it, see Wish.
bool isWished(const char *wish);

/// Notes its begin and its end.
class Noted
{
public:
    Noted(const char *begin, const char *end) : m_end(end) { note(begin); }
    ~Noted() { note(m_end); }
    Noted(const Noted &) = delete;
    Noted &operator=(const Noted &) = delete;

private:
    const char *m_end;
};
