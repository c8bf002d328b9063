#include "ProbeHost.h"
#include "runtime_probe.h"

#include <typeinfo>

void throwCode(int code)
{
    throw CodeError{code};
}

void throwText(const char *text)
{
    throw TextError(text);
}

void throwBadCast()
{
    Shape shape;
    static_cast<void>(dynamic_cast<Circle &>(shape));
}

void throwBadTypeid()
{
    const Shape *volatile none = nullptr;
    const Shape &object = *none;
    static_cast<void>(typeid(object).name());
}

void runBeneathFrame(Callback callback)
{
    const Noted frame("library's frame", "end of library's frame");
    callback();
}

int codeThrownBy(Callback callback)
{
    try {
        callback();
    } catch (const CodeError &error) {
        return error.code;
    }
    return 0;
}

void captureText(const char *text, std::exception_ptr *captured)
{
    try {
        throw TextError(text);
    } catch (...) {
        *captured = std::current_exception();
    }
}

Shape *makeCircle()
{
    return new Circle;
}

bool isCircle(const Shape &shape)
{
    return dynamic_cast<const Circle *>(&shape) != nullptr && typeid(shape) == typeid(Circle);
}
