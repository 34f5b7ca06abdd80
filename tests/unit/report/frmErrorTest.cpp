#include <gmock/gmock.h>

#include "core/report/frmError.h"
#include "core/support/EndProgram.h"
#include "support/World.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kErrorFile = "Quenby DirectX Test.txt";

class ErrorForm : public testing::Test, protected World {
protected:
    ErrorForm() {
        form.OnClosed = [this] { ++unloads; };
        for (const char* key : {"Input", "Output", "LineInput"}) store.Save("SoundCard", key, "old");
        state.Message = "It failed";
    }
    std::string Stored(const char* key) const { return store.Get("SoundCard", key, "(absent)"); }

    ErrorState state;
    SharedState shared;
    Settings settings{store};
    ScriptedDiagnostics diagnostics{log};
    frmError form{{state, shared, settings, dialogs, files, diagnostics, help, "in-used", "out-used"}};
    int unloads = 0;
};

TEST_F(ErrorForm, ShowsTheMessageWithTheDefaultPointer) {
    form.Form_Load();
    EXPECT_THAT(log.Lines(), ElementsAre("SetBusyPointer off"));
    EXPECT_EQ(form.lblMessage.Caption(), "It failed");
    EXPECT_EQ(state.Message, "It failed");
    EXPECT_TRUE(form.cmdNewSoundCard.Enabled());
    EXPECT_EQ(form.cmdDirectX.Caption(), "Run DirectX Diag");
    EXPECT_EQ(form.lblStatus.Caption(), "");
}

TEST_F(ErrorForm, OfAFatalErrorOffersNoNewSoundCard) {
    state.FatalError = true;
    form.Form_Load();
    EXPECT_EQ(form.lblMessage.Caption(), "It failed\r\rProgram will terminate.");
    EXPECT_EQ(state.Message, "It failed\r\rProgram will terminate.");
    EXPECT_FALSE(form.cmdNewSoundCard.Enabled());
    form.cmdNewSoundCard.Press();
    EXPECT_EQ(Stored("Input"), "old");
    EXPECT_EQ(unloads, 0);
}

TEST_F(ErrorForm, SaysThatTheReportIsBeingMadeAndWritesIt) {
    form.Form_Load();
    form.cmdDirectX.Press();
    EXPECT_EQ(form.lblStatus.Caption(), "Running DxDiag...");
    EXPECT_TRUE(diagnostics.Running());
    EXPECT_THAT(files.files, IsEmpty());
    diagnostics.Finish("servers\ncards\n");
    EXPECT_EQ(files.files[kErrorFile], "servers\ncards\n");
    EXPECT_EQ(form.lblStatus.Caption(),
              "A file named 'Quenby DirectX Test.txt' has been created on your desktop");
    form.cmdDirectX.Press();
    diagnostics.Finish("cards\n");
    EXPECT_EQ(files.files[kErrorFile], "cards\n");
}

TEST_F(ErrorForm, MakesOneReportAtATime) {
    form.Form_Load();
    form.cmdDirectX.Press();
    form.cmdDirectX.Press();
    EXPECT_EQ(log.Count("Diagnostics.Start"), 1U);
}

TEST_F(ErrorForm, SaysWhenThereIsNoProgramForTheReport) {
    form.Form_Load();
    form.cmdDirectX.Press();
    diagnostics.Finish({});
    EXPECT_EQ(form.lblStatus.Caption(), "Unable to find 'DxDiag.exe'");
    EXPECT_THAT(files.files, IsEmpty());
    EXPECT_TRUE(form.cmdDirectX.Enabled());
}

TEST_F(ErrorForm, SaysWhenTheReportCannotBeWritten) {
    log.Fail("Replace", RuntimeError(70, "Permission denied"));
    form.Form_Load();
    form.cmdDirectX.Press();
    diagnostics.Finish("cards");
    EXPECT_EQ(form.lblStatus.Caption(),
              "The file 'Quenby DirectX Test.txt' cannot be written on your desktop: Permission denied");
    EXPECT_TRUE(form.cmdDirectX.Enabled());
}

TEST_F(ErrorForm, ForgetsTheStoredDevicesWhileTheEngineDoesNotRun) {
    form.Form_Load();
    form.cmdNewSoundCard.Press();
    EXPECT_EQ(Stored("Input"), "");
    EXPECT_EQ(Stored("LineInput"), "");
    EXPECT_EQ(Stored("Output"), "");
    EXPECT_EQ(unloads, 1);
}

TEST_F(ErrorForm, KeepsTheDevicesInUseWhileTheEngineRuns) {
    shared.EventsReady = true;
    form.Form_Load();
    form.cmdNewSoundCard.Press();
    EXPECT_EQ(Stored("Input"), "in-used");
    EXPECT_EQ(Stored("Output"), "out-used");
    EXPECT_EQ(Stored("LineInput"), "old");
    EXPECT_EQ(unloads, 1);
}

TEST_F(ErrorForm, EndsTheProgramAtOnceWithoutStoring) {
    form.Form_Load();
    form.cmdDirectX.Press();
    bool atOnce = false;
    try {
        form.Command1.Press();
    } catch (const EndProgram& end) {
        atOnce = end.atOnce;
    }
    EXPECT_TRUE(atOnce);
    EXPECT_FALSE(diagnostics.Running());
    EXPECT_EQ(Stored("Input"), "old");
    EXPECT_EQ(unloads, 0);
}

TEST_F(ErrorForm, OpensItsHelpTopic) {
    form.Form_Load();
    form.Command2.Press();
    EXPECT_THAT(log.Of("ShowTopic"), ElementsAre("ShowTopic 305"));
    EXPECT_EQ(unloads, 0);
}

TEST_F(ErrorForm, GivesTheReportUpWhenItCloses) {
    form.Form_Load();
    form.cmdDirectX.Press();
    form.Unload();
    EXPECT_FALSE(diagnostics.Running());
    EXPECT_EQ(unloads, 1);
}

TEST(ErrorFormLife, GivesTheReportUpWithItsEnd) {
    World world;
    ErrorState state;
    SharedState shared;
    Settings settings(world.store);
    ScriptedDiagnostics diagnostics(world.log);
    {
        frmError form({state, shared, settings, world.dialogs, world.files, diagnostics, world.help, "", ""});
        form.cmdDirectX.Press();
    }
    EXPECT_FALSE(diagnostics.Running());
    diagnostics.Finish("late");
    EXPECT_THAT(world.files.files, IsEmpty());
}

}  // namespace
}  // namespace sonavex
