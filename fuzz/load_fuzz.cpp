// Arbitrary bytes through the loader with the library's factory installed. Whatever loads must save; the
// saved text must load again and save to the same bytes. Anything else is a bug, reported by aborting.

#include <orvia/core/library.h>
#include <orvia/ruvex/factory.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

[[noreturn]] void Fail(const char* what, const std::string& text) {
    std::fprintf(stderr, "%s\n", what);
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
        std::fprintf(stderr, "  %s\n", Ruvex::ToString(problem).c_str());
    std::fprintf(stderr, "--- saved text ---\n%s\n", text.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool initialised = [] {
        Orvia::Init(Ruvex::Encoding::UTF8);
        return true;
    }();
    (void)initialised;

    // The loader reads NUL-terminated text: a NUL inside the input ends it, as it would for any caller.
    const std::string input(reinterpret_cast<const char*>(data), size);
    Ruvex::CountedPtr<Ruvex::Element> root(Ruvex::Load(input.c_str(), true));
    if (!root) return 0;
    const std::string first = Ruvex::SaveToString(root.Get());
    if (first.empty()) Fail("a loaded document does not save", input);
    Ruvex::CountedPtr<Ruvex::Element> again(Ruvex::Load(first.c_str(), true));
    if (!again) Fail("a saved document does not load", first);
    const std::string second = Ruvex::SaveToString(again.Get());
    if (second != first) {
        std::fprintf(stderr, "--- first save ---\n%s\n", first.c_str());
        Fail("the second save differs from the first", second);
    }
    return 0;
}
