// Writes its arguments to standard output, each followed by a NUL byte, then a record separator
// (0x1E) and a newline: the exact bytes a child received, for quoting tests.
#include <cstdio>

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        std::fputs(argv[i], stdout);
        std::fputc('\0', stdout);
    }
    std::fputs("\x1e\n", stdout);
    return 0;
}
