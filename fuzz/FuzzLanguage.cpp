// Lines of a language file.
#include "Require.h"
#include "lang/LanguageFile.h"

using namespace korvalin;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    const std::string_view code = CodeOfLanguageLine(line);
    Require(code.empty() || line.find(code) != std::string_view::npos);
    if (const auto entry = SplitLanguageLine(line)) Require(!NormalizeTextNumber("1").empty());
    const std::string number = NormalizeTextNumber(line);
    Require(NormalizeTextNumber(number) == number);
    return 0;
}
