// The scanner of a configuration's text against the two expressions that define its grammar, on any
// text that they can match: they go back and forth, so long ones would find nothing in the time.
#include "fuzz/input_file.h"
#include "tests/kit/config_expressions.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t longest = 400;
    if (size > longest) {
        return 0;
    }
    const QString text = QString::fromLatin1(bytesOf(data, size));
    if (parseConfigText(text) != byExpressions(text)) {
        std::abort();
    }
    return 0;
}
