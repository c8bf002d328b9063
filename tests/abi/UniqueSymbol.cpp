// A library with one symbol of the kind that keeps its library loaded. In assembler, because not every
// compiler makes such symbols.
__asm__(".data\n"
        ".globl uniqueSymbol\n"
        ".type uniqueSymbol, @gnu_unique_object\n"
        ".size uniqueSymbol, 4\n"
        "uniqueSymbol: .long 1\n"
        ".text\n");
