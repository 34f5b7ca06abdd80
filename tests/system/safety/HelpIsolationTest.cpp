// A help file that refers to resources outside of it: none is opened, requested or started.

#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <array>
#include <chrono>

#include "support/Files.h"
#include "system/safety/Account.h"
#include "system/safety/Confined.h"
#include "system/safety/HelpPage.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Records which files of a folder are opened during its lifetime.
class Watch {
public:
    explicit Watch(const std::filesystem::path& folder)
        : descriptor_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(inotify_add_watch(descriptor_, folder.c_str(), IN_OPEN), 0);
    }
    ~Watch() { close(descriptor_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    std::vector<std::string> Opened() const {
        std::vector<std::string> names;
        alignas(inotify_event) std::array<char, 16384> events{};
        const ssize_t length = read(descriptor_, events.data(), events.size());
        for (ssize_t at = 0; at < length;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(events.data() + at);
            if (event->len > 0) names.emplace_back(event->name);
            at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
        }
        return names;
    }

private:
    int descriptor_;
};

// A folder with one file of each kind that a page can refer to.
class HelpIsolation : public testing::TestWithParam<const char*> {
protected:
    HelpIsolation() {
        QImage picture(64, 64, QImage::Format_RGB32);
        picture.fill(QColor(Qt::red));
        for (const char* const name : {"trap.png", "trap@2x.png"})
            EXPECT_TRUE(picture.save(QString::fromStdString(Trap(name))));
        WriteFile(Trap("trap.css"), "p { color: #123456; }");
        WriteFile(Trap("trap.html"), "<html><body>outside of the book</body></html>");
    }
    std::filesystem::path Traps() const { return account_.Home() / "traps"; }
    std::string Trap(const std::string& name) const {
        std::filesystem::create_directories(Traps());
        return (Traps() / name).string();
    }
    // A page that refers to all of them by addresses with this beginning.
    static std::string Page(const std::string& beginning) {
        const std::string picture = beginning + "trap.png";
        const std::string page = beginning + "trap.html";
        return "<html><head><meta http-equiv=\"refresh\" content=\"0; url=" + page + "\">" +
               "<link rel=\"stylesheet\" type=\"text/css\" href=\"" + beginning + "trap.css\">" +
               "<style type=\"text/css\">@import url(" + beginning + "trap.css); p { background-image: url(" +
               picture + "); }</style><script src=\"" + beginning + "trap.js\"></script></head>" +
               "<body background=\"" + picture + "\"><p>Begin</p><img src=\"" + picture + "\">" +
               "<p style=\"background-image: url('" + picture + "')\"><a href=\"" + page + "\">link</a></p>" +
               "<table background=\"" + picture + "\"><tr><td background=\"" + picture + "\">cell</td></tr>" +
               "</table><ul style=\"list-style-image: url(" + picture + ")\"><li>item</li></ul>" +
               "<object data=\"" + page + "\" type=\"text/html\"></object><iframe src=\"" + page +
               "\"></iframe><embed src=\"" + picture + "\"><a href=\"" + picture +
               "\">picture</a><p>End</p>" + "</body></html>";
    }

    Account account_;
};

// Proves that the next test can fail.
TEST_F(HelpIsolation, SeesWhatIsOpened) {
    const Watch watch(Traps());
    EXPECT_THAT(watch.Opened(), IsEmpty());
    FileText(Trap("trap.css"));
    EXPECT_THAT(watch.Opened(), ElementsAre("trap.css"));
}

TEST_F(HelpIsolation, SeesAnAddressThatIsOpened) {
    ChildProcess process(OpenAddress("http://127.0.0.1:9/"), account_.Variables(), account_.Output());
    ASSERT_TRUE(process.WaitForEnd(60s));
    EXPECT_THAT(FileText(account_.Output()), HasSubstr("openUrl"));
}

TEST_P(HelpIsolation, OpensAsksForAndStartsNothing) {
    const std::string traps = Traps().string() + "/";
    const std::map<std::string, std::string> beginnings{
        {"path", traps},
        {"file", "file://" + traps},
        {"localhost", "file://localhost" + traps},
        {"capital", "FILE://" + traps},
        {"host", "//127.0.0.1" + traps},
        {"parent", std::string("../../../../../../../../../..") + traps},
        {"relative", ""},
        {"http", "http://127.0.0.1:9/"},
        {"https", "https://127.0.0.1:9/"},
        {"ftp", "ftp://127.0.0.1:9/"},
        {"data", "data:text/html,"},
        {"resource", "qrc:/"},
    };
    const auto page = account_.Home() / "page.html";
    WriteFile(page, Page(beginnings.at(GetParam())));
    const Watch watch(Traps());
    for (const char* const scale : {"1", "2"}) {
        std::filesystem::remove(account_.Output());
        Confinement confinement;
        confinement.noInternet = true;
        ChildProcess process(Confined(confinement, ShowHelpPage(page, Traps())),
                             account_.Variables({{"QT_SCALE_FACTOR", scale}}), account_.Output());
        ASSERT_TRUE(process.WaitForEnd(60s));
        const std::string output = FileText(account_.Output());
        EXPECT_EQ(process.Status(), 0) << output;
        EXPECT_THAT(output, AllOf(HasSubstr("Begin"), HasSubstr("End"), HasSubstr("links followed"),
                                  Not(HasSubstr("outside of the book")), Not(HasSubstr("another page"))));
        EXPECT_THAT(watch.Opened(), IsEmpty()) << "at scale " << scale;
        // The test platform's message for opening an address.
        EXPECT_THAT(output, Not(HasSubstr("openUrl")));
    }
}

INSTANTIATE_TEST_SUITE_P(Addresses, HelpIsolation,
                         testing::Values("path", "file", "localhost", "capital", "host", "parent", "relative",
                                         "http", "https", "ftp", "data", "resource"),
                         [](const testing::TestParamInfo<const char*>& beginning) {
                             return std::string(beginning.param);
                         });

}  // namespace
}  // namespace sonavex
