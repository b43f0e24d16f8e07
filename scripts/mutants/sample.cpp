// Something for each kind of fault; each mutant changes what this prints, and check.py holds it to that.
#include <cstdio>
#include <string>

namespace {

constexpr int limit = 6;
const int table[] = {10, 20};

struct Text {
    static constexpr int marks = 2;
    explicit operator bool() const { return !letters.empty(); }
    bool operator==(const Text&) const = default;
    std::string letters;
};

constexpr int doubled(int number) { return number * 2; }

bool isLong(const Text& text) { return text.letters.size() > 2; }

std::string spelled(const Text& text, int more) {
    std::string result = text.letters;
    for (int left = limit; left > more; --left) {
        if (left == 4)
            continue;
        result.append(Text::marks, '!');
        result += std::to_string(left);
    }
    if (text && isLong(text))
        result.append("?");
    else if (!text)
        return "-";
    return result;
}

template<class Number>
Number difference(Number one, Number other) {
    return one - other;
}

void print(const std::string& text) {
    if (text.empty()) {
        std::puts("nothing");
        return;
    }
    std::puts(text.c_str());
}

} // namespace

int main() {
    const auto add = [](std::string& to) { return to.append("+"), true; };
    std::string sum;
    const bool added = add(sum);
    print(sum + (added ? "yes" : "no"));
    print("");
    for (const Text& text : {Text{"ab"}, Text{"abc"}, Text{""}})
        print(spelled(text, doubled(1)) + (text != Text{"ab"} ? "other" : ""));
    for (int number = 9; number <= 20; ++number)
        std::printf("%d", number > 9 && number < 20);
    std::printf(" %d\n", difference(table[0], table[1]));
}
