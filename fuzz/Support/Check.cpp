#include "fuzz/Support/Check.h"

#include <cstdio>
#include <cstdlib>

void FailProperty(const std::string& property, const std::string& detail) {
    // The streams may be captured at this moment; the C library's are not.
    std::fprintf(stderr, "\nPROPERTY VIOLATED: %s\n", property.c_str());
    std::fwrite(detail.data(), 1, detail.size(), stderr);
    std::fputc('\n', stderr);
    std::abort();
}
