# kvx_warnings: what our own code is compiled with. Linked PRIVATE, so that it never reaches users of the SDK.
add_library(kvx_warnings INTERFACE)
# For clang-cl -Wall is more than anybody wants; its /W4 is what the other compilers call -Wall and -Wextra.
if(MSVC)
    set(basicWarnings /W4)
else()
    set(basicWarnings -Wall -Wextra)
endif()
target_compile_options(kvx_warnings INTERFACE
    $<$<CXX_COMPILER_ID:GNU,Clang>:${basicWarnings};-Wpedantic;-Wshadow;-Wconversion;-Wsign-conversion;-Wnon-virtual-dtor;-Woverloaded-virtual;-Wold-style-cast;-Wcast-qual;-Wundef;-Wextra-semi;-Wsuggest-override;-Werror>
    # Qt's logging macros are called with one argument less than strict C++17 asks for.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-c++20-extensions>
    $<$<CXX_COMPILER_ID:MSVC>:/W4;/WX;/utf-8>)
target_compile_definitions(kvx_warnings INTERFACE
    QT_NO_KEYWORDS
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
