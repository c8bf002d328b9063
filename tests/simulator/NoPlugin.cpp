#include <QtCore/QString>

extern "C" Q_DECL_EXPORT int lengthOfNothing();

int lengthOfNothing()
{
    return static_cast<int>(QString().size());
}
