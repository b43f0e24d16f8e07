#include "build/PackageFile.h"
#include "build/Archive2.h"
#include "foundation/Text.h"
#include "support/MemoryFiles.h"

#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>
#include <random>

namespace {

class RecordingListener : public PackageListener {
public:
    void success(const QString& text) override { lines << "success: " + text; }
    void message(const QString& text) override { lines << text; }
    QStringList lines;
};

constexpr qint64 second = 1'000'000'000;

class PackageFile : public testing::Test {
protected:
    PackageFile() { memory.makeDirectory("/p"); }

    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    RecordingListener listener;
    PackageUpdater updater;

    /// Updates /p/x.vkq, and gives what the listener heard.
    QStringList update(const QString& member, const QString& input, bool replace = true, bool quiet = false) {
        listener.lines.clear();
        updater.addToRemoveFromArchive("/p", "x.vkq", member, input, &listener, quiet, replace);
        return listener.lines;
    }
    /// The members of /p/x.vkq, as "name=data" each.
    QStringList members() {
        QByteArray image;
        Archive2 archive;
        QStringList all;
        if (QTx::decompressFile("/p/x.vkq", image) != QTx::Decompressed::Ok ||
            archive.open(viewOf(image), "") != 0)
            return {"no package"};
        for (const ArchiveChunk2& chunk : archive.members())
            all << toText(viewOf(chunk.name)) + "=" + toText(chunk.data());
        return all;
    }
    /// Makes /p/x.vkq of an image.
    void store(const QByteArray& image) { QTx::compressFile(image, "/p/x.vkq"); }
};

} // namespace

TEST_F(PackageFile, IsTheHeaderTheSizeAndAStream) {
    store("hello, hello, hello");
    const QByteArray bytes = memory.contents("/p/x.vkq");
    EXPECT_EQ(bytes.left(14).toHex(), "7af431b201000000"
                                      "00000013"
                                      "789c");
    QByteArray contents;
    EXPECT_EQ(QTx::decompressFile("/p/x.vkq", contents), QTx::Decompressed::Ok);
    EXPECT_EQ(contents, "hello, hello, hello");
}

TEST_F(PackageFile, ThatIsDamagedHoldsNothing) {
    store(QByteArray(1000, 'a'));
    const QByteArray good = memory.contents("/p/x.vkq");
    const auto patched = [&](qsizetype at, const QByteArray& bytes) {
        return QByteArray(good).replace(at, bytes.size(), bytes);
    };
    const QByteArray rows[] = {"",
                               good.left(7),
                               good.left(8),
                               good.left(12),
                               good.left(13),
                               good.chopped(1),
                               patched(4, "\2"),
                               patched(8, "\xFF\xFF\xFF\xFF"),
                               patched(12, QByteArray(2, '\0')),
                               good.mid(8)};
    for (const QByteArray& row : rows) {
        QByteArray contents = "x";
        EXPECT_EQ(QTx::decompress(viewOf(row), contents), QTx::Decompressed::NotCompressed)
            << row.toHex().constData();
        EXPECT_TRUE(contents.isEmpty());
    }
    QByteArray contents;
    EXPECT_EQ(QTx::decompressFile("/p/none", contents), QTx::Decompressed::NotCompressed);
    // 3 GB could be in there, so it is not taken for empty.
    QByteArray large(4'000'000, '\0');
    large.replace(0, 8, good.left(8)).replace(8, 4, QByteArray("\xC0\0\0\0", 4));
    EXPECT_EQ(QTx::decompress(viewOf(large), contents), QTx::Decompressed::Refused);
}

TEST_F(PackageFile, IsMadeUpdatedAndEmptied) {
    memory.write("/s/a", "one");
    memory.write("/s/b", "two");
    EXPECT_EQ(update("a", "/s/a"), QStringList{"adding /s/a to x.vkq(a)."});
    update("b", "/s/b");
    EXPECT_EQ(members(), (QStringList{"a=one", "b=two"}));
    memory.write("/s/a", "three");
    update("a", "/s/a");
    EXPECT_EQ(members(), (QStringList{"b=two", "a=three"})) << "a replaced member goes behind the others";
    EXPECT_EQ(update("b", ""), QStringList{"removing x.vkq(b)."});
    EXPECT_EQ(update("none", "", true, true), QStringList{"removing x.vkq(none)."});
    EXPECT_EQ(members(), QStringList{"a=three"});
    update("a", "");
    EXPECT_EQ(members(), QStringList());
    EXPECT_EQ(memory.list("/p"), QList<QString>{"x.vkq"}) << "nothing else is written";
}

TEST_F(PackageFile, TellsWhyAMemberIsBroughtUpToDate) {
    memory.write("/s/a", "one");
    EXPECT_EQ(update("a", "/s/a", false),
              (QStringList{"x.vkq(a) does not exist.", "adding /s/a to x.vkq(a)."}));
    EXPECT_EQ(update("a", "/s/a", false), QStringList{"success: 'x.vkq(a)' is up to date."});
    EXPECT_EQ(update("a", "/s/a", false, true), QStringList());
    EXPECT_EQ(update("a", "/s/none", false), QStringList{"success: 'x.vkq(a)' is up to date."});
    memory.tick();
    memory.touch("/s/a");
    EXPECT_EQ(update("a", "/s/a", false),
              (QStringList{"/s/a is newer than x.vkq(a).", "adding /s/a to x.vkq(a)."}));
    memory.tick();
    memory.touch("/s/a");
    EXPECT_EQ(update("a", "/s/a", false, true), QStringList{"adding /s/a to x.vkq(a)."});
    updater.addToRemoveFromArchive("/p", "x.vkq", "b", "/s/a", nullptr, false, false);
    EXPECT_EQ(members(), (QStringList{"a=one", "b=one"}));
}

TEST_F(PackageFile, ReplacesAMemberOfUnknownTime) {
    memory.write("/s/a", "new");
    Archive2 archive;
    archive.addMember("s", "old", "a", 0, 3, 1, 0);
    QByteArray image;
    archive.write("", image);
    store(image);
    EXPECT_EQ(update("a", "/s/a", false).value(0), "x.vkq(a) does not exist.");
    EXPECT_EQ(members(), QStringList{"a=new"});
}

TEST_F(PackageFile, KeepsFlagsOfOtherMembersAndTheTimeOfTheFile) {
    memory.write("/s/a", "new");
    Archive2 archive;
    archive.addMember("s", "old", "other", 0, 3, 9, 77);
    QByteArray image;
    archive.write("", image);
    store(image);
    update("a", "/s/a");
    QTx::decompressFile("/p/x.vkq", image);
    archive.open(viewOf(image), "");
    EXPECT_EQ(archive.findMember("other")->flag, 9);
    EXPECT_EQ(archive.findMember("other")->time, 77u);
    EXPECT_EQ(archive.findMember("a")->flag, 1);
    EXPECT_EQ(archive.findMember("a")->time, memory.modified("/s/a") / second);
}

TEST_F(PackageFile, StartsFromEmptyWhereNothingCanBeHad) {
    memory.write("/s/a", "one");
    Archive2 plain;
    plain.addMember("s", "data", "old", 0, 4, 1, 1);
    QByteArray image;
    plain.write("", image);
    memory.write("/p/x.vkq", viewOf(image)); // not in the compressed form
    EXPECT_EQ(update("a", "/s/a", false).value(0), "x.vkq(a) does not exist.");
    EXPECT_EQ(members(), QStringList{"a=one"});
    memory.write("/p/x.vkq.decompressed", viewOf(image));
    memory.remove("/p/x.vkq");
    update("a", "/s/a");
    EXPECT_EQ(members(), QStringList{"a=one"}) << "an old temporary file means nothing";
}

TEST_F(PackageFile, StaysAsItWasWhenAnUpdateFails) {
    memory.write("/s/a", "one");
    update("a", "/s/a");
    const QByteArray before = memory.contents("/p/x.vkq");
    EXPECT_EQ(update("b", "/s/none"), QStringList());
    EXPECT_EQ(memory.contents("/p/x.vkq"), before);
    memory.failWith(ENOSPC);
    EXPECT_EQ(update("b", "/s/a"), QStringList{"adding /s/a to x.vkq(b)."});
    EXPECT_EQ(memory.contents("/p/x.vkq"), before);
    memory.failWith(0);
    // A member whose data lie outside the image.
    QByteArray image;
    QTx::decompressFile("/p/x.vkq", image);
    image[8 + 1028] = 100;
    store(image);
    const QByteArray damaged = memory.contents("/p/x.vkq");
    update("b", "/s/a");
    EXPECT_EQ(memory.contents("/p/x.vkq"), damaged);
    update("a", "/s/a");
    EXPECT_EQ(members(), QStringList{"a=one"}) << "the member at fault itself can be replaced";
}

TEST_F(PackageFile, IsReadOnceForManyMembersAndAgainWhenItChanges) {
    memory.write("/s/a", "one");
    update("a", "/s/a");
    memory.reads.clear();
    for (int i = 0; i < 10; ++i)
        update("a", "/s/a", false);
    EXPECT_EQ(memory.reads["/p/x.vkq"], 1);
    memory.tick();
    store("not a container");
    EXPECT_EQ(update("a", "/s/a", false).value(0), "x.vkq(a) does not exist.");
    EXPECT_EQ(update("a", "/s/a", false).value(0), "success: 'x.vkq(a)' is up to date.");
}

TEST_F(PackageFile, LongNamesAreFoundAgain) {
    memory.write("/s/a", "one");
    const QString name(1500, 'n');
    update(name, "/s/a", false);
    EXPECT_EQ(update(name, "/s/a", false).size(), 1);
    EXPECT_EQ(members().size(), 1);
}

TEST_F(PackageFile, HoldsWhatAnySequenceOfUpdatesLeaves) {
    std::mt19937 random(1);
    QStringList expected;
    for (int step = 0; step < 300; ++step) {
        const QString name(1, QChar(static_cast<char16_t>('a' + random() % 6)));
        expected.removeIf([&](const QString& member) { return member.startsWith(name); });
        const bool removal = random() % 4 == 0;
        if (!removal) {
            const QString data = QString::number(random()).left(static_cast<qsizetype>(random() % 9));
            memory.write("/s/" + name, viewOf(toBytes(data)));
            expected << name + "=" + data;
        }
        update(name, removal ? QString("") : QString("/s/" + name));
        ASSERT_EQ(members(), expected) << "step " << step;
    }
}

TEST_F(PackageFile, OfManyMembersTakesLinearTime) {
    Archive2 archive;
    const std::string data(40'000, 'd');
    for (quint32 i = 0; i < 20'000; ++i)
        archive.addMember("s", data, QByteArray::number(i), 2 * i, 2, 1, 1);
    QByteArray image;
    ASSERT_EQ(archive.write("", image), Archive2::Ok);
    store(image);
    memory.write("/s/a", "one");
    update("19999", "/s/a", false);
    EXPECT_EQ(members().size(), 20'000);
    for (int i = 0; i < 1'000; ++i)
        ASSERT_EQ(update("19999", "/s/a", false).size(), 1);
}
