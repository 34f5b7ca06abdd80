#include <gmock/gmock.h>

#include <random>

#include "adapters/chm/HelpFile.h"
#include "platform/chm/ChmHelpBook.h"
#include "platform/chm/ChmStructure.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

// Truncated, changed and foreign files give a message and never crash.
class DamagedHelpFileTest : public testing::Test {
protected:
    // Reads the whole book; returns the error's text if it cannot be opened.
    std::string Use(const std::string& content) {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
        try {
            const ChmHelpBook book(file);
            book.Search("baseline signal");
            book.PageOfTopic(305);
            for (const char* path : {"meter.png", "#STRINGS", "keyboard.html"}) book.Read(path);
            ++opened;
            return {};
        } catch (const HelpFileError& error) {
            ++refused;
            return error.what();
        }
    }

    const std::string whole = BytesOf(HelpFile());
    PrivateFolder folder;
    std::string file = folder.Path() / "damaged.chm";
    int opened = 0;
    int refused = 0;
};

TEST_F(DamagedHelpFileTest, OpensTheUndamagedFile) {
    EXPECT_EQ(Use(whole), "");
}

TEST_F(DamagedHelpFileTest, RefusesAFileThatIsMissing) {
    try {
        const ChmHelpBook book(folder.Path() / "missing.chm");
        FAIL() << "opened";
    } catch (const HelpFileError& error) {
        EXPECT_STREQ(error.what(), "The file cannot be read.");
    }
    EXPECT_THROW(ChmHelpBook(folder.Path()), HelpFileError);
}

TEST_F(DamagedHelpFileTest, RefusesForeignFiles) {
    for (const std::string& content :
         {std::string(), std::string("ITSF"), std::string(100000, '\0'), std::string("%PDF-1.4\n%..."),
          "ITSF" + std::string(200, '\xFF'), BytesOf("/proc/self/exe").substr(0, 500000)})
        EXPECT_EQ(Use(content), "The file is damaged or is no help file.");
}

TEST_F(DamagedHelpFileTest, RefusesCutFiles) {
    for (std::size_t length = 0; length < 0x400; length += 3)
        EXPECT_NE(Use(whole.substr(0, length)), "") << length;
    for (int part = 1; part < 400; ++part) Use(whole.substr(0, whole.size() * part / 400));
    EXPECT_NE(Use(whole.substr(0, whole.size() - 1)), "");
    EXPECT_EQ(opened, 0);
}

TEST_F(DamagedHelpFileTest, SeesEveryChangedByte) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 500; ++round) {
        std::string content = whole;
        char& byte = content[random() % content.size()];
        byte = static_cast<char>(byte + 1 + static_cast<int>(random() % 255));
        EXPECT_NE(Use(content), "");
    }
}

TEST_F(DamagedHelpFileTest, RefusesFilesOfWhichPiecesAreMissingOrTwice) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string content = whole;
        const std::size_t from = random() % content.size();
        const std::size_t length = std::min<std::size_t>(1 + random() % 5000, content.size() - from);
        if (round % 2 == 0)
            content.erase(from, length);
        else
            content.insert(random() % content.size(), content.substr(from, length));
        Use(content);
    }
    EXPECT_EQ(opened, 0);
    EXPECT_EQ(refused, 300);
}

TEST_F(DamagedHelpFileTest, RefusesBytesBehindTheEnd) {
    EXPECT_NE(Use(whole + "x"), "");
    EXPECT_NE(Use(whole + whole), "");
}

// The frame alone, as if the checksum were right.
class DamagedFrameTest : public DamagedHelpFileTest {
protected:
    void Check(const std::string& content) {
        try {
            CheckStructure(content);
            ++opened;
        } catch (const HelpFileError&) {
            ++refused;
        }
    }
    const std::size_t frame = 0x78 + 0x54 + 0x1000;
};

TEST_F(DamagedFrameTest, SurvivesEveryWrongByte) {
    for (std::size_t at = 0; at < frame; ++at) {
        std::string content = whole;
        for (const char value : {'\0', '\x7F', '\xFF', static_cast<char>(content[at] ^ 1)}) {
            content[at] = value;
            Check(content);
        }
    }
    EXPECT_GT(refused, 1000);
    EXPECT_GT(opened, 1000);
}

TEST_F(DamagedFrameTest, SurvivesRandomBytes) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        std::string content = whole.substr(0, frame + random() % 0x1000);
        for (int change = static_cast<int>(random() % 30); change >= 0; --change)
            content[random() % content.size()] = static_cast<char>(random());
        Check(content);
    }
    EXPECT_EQ(refused, 20000);
}

TEST_F(DamagedFrameTest, RefusesEveryCut) {
    CheckStructure(whole);
    for (std::size_t length = 0; length < frame; ++length) Check(whole.substr(0, length));
    EXPECT_EQ(opened, 0);
}

}  // namespace
}  // namespace sonavex
