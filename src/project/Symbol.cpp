#include "project/Symbol.h"

#include "foundation/Text.h"

#include <QHashFunctions>
#include <deque>
#include <unordered_set>

namespace {

/// Text and its bytes have one hash, so that the loader finds a name without converting it.
template<typename Text>
size_t hashOf(const Text& text) {
    uint64_t hash = 0xcbf29ce484222325u;
    for (const auto c : text)
        hash = (hash ^ static_cast<uint16_t>(QChar(c).unicode())) * 0x100000001b3u;
    return static_cast<size_t>(hash ^ (hash >> 29));
}

QLatin1String latin1(std::string_view bytes) { return {bytes.data(), static_cast<qsizetype>(bytes.size())}; }

} // namespace

struct Symbol::Table {
    struct Hash {
        using is_transparent = void;
        size_t operator()(const Entry* entry) const { return hashOf(QStringView(entry->text)); }
        size_t operator()(QStringView text) const { return hashOf(text); }
        size_t operator()(QLatin1String text) const { return hashOf(text); }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const Entry* a, const Entry* b) const { return a == b; }
        bool operator()(const Entry* a, QStringView b) const { return a->text == b; }
        bool operator()(const Entry* a, QLatin1String b) const { return a->text == b; }
        bool operator()(QStringView a, const Entry* b) const { return b->text == a; }
        bool operator()(QLatin1String a, const Entry* b) const { return b->text == a; }
    };

    template<typename Text>
    const Entry* find(const Text& text) const {
        const auto found = index.find(text);
        return found == index.end() ? nullptr : *found;
    }
    const Entry* add(const QString& text) {
        entries.push_back({text});
        index.insert(&entries.back());
        return &entries.back();
    }

    std::deque<Entry> entries;
    std::unordered_set<const Entry*, Hash, Equal> index;

    static Table& instance() {
        static Table& table = *new Table; // outlives every tree
        return table;
    }
};

Symbol Symbol::of(const QString& text) {
    Table& table = Table::instance();
    const Entry* entry = table.find(QStringView(text));
    return Symbol(entry ? entry : table.add(text));
}

Symbol Symbol::of(std::string_view bytes) {
    Table& table = Table::instance();
    const Entry* entry = table.find(latin1(bytes));
    return Symbol(entry ? entry : table.add(toText(bytes)));
}

Symbol Symbol::findConfiguration(const QString& name) {
    static QString lastName;
    static Symbol lastSymbol;
    const bool isSameText = name.constData() == lastName.constData() && name.size() == lastName.size();
    if (!lastSymbol || !isSameText) {
        lastName = name;
        lastSymbol = find(name);
    }
    return lastSymbol;
}

Symbol Symbol::common() {
    static const Symbol common = of(QString("Common"));
    return common;
}

size_t Symbol::count() { return Table::instance().entries.size(); }

Symbol Symbol::find(const QString& text) { return Symbol(Table::instance().find(QStringView(text))); }
