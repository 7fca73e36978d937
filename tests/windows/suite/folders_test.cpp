// A suite in folders whose names have letters without a capital in file systems, letters of other scripts,
// and blanks: started there by hand, with and without the setting that names the folder, the program finds
// all its files, and so says the doctor.
#include "library/installed_suite.h"

namespace vordane::suite {
namespace {

class Folders : public InstalledSuite, public testing::WithParamInterface<const wchar_t*> {
 protected:
  // One installation for all of them: each copies it.
  static void SetUpTestSuite() { install("en"); }
  void SetUp() override {
    std::filesystem::create_directories(place_.parent_path());
    copyFolder(layout().root, place_);
    removeSettings(layout().otherSection);
  }
  void TearDown() override {
    endSuitePrograms();
    std::filesystem::remove_all(layout().elsewhere / GetParam());
    removeSettings(layout().otherSection);
  }

  // Without its texts or its faults it shows no window.
  void expectStart() const {
    StartedByHand addin(L"PBX-1", place_ / L"ADDINS" / L"VORDANE.EXE");
    addin.window.awaitShown();
    EXPECT_FALSE(addin.window.textOf(L"cmdRequest").empty()) << "its texts";
    addin.window.press(L"cmdClose");
    EXPECT_EQ(addin.program.wait(), 0);
  }

  Path place_ = layout().elsewhere / GetParam() / L"QUILMAR32" / layout().otherSection;
};

TEST_P(Folders, TheSuiteStartsThereAndTheDoctorFindsItsFiles) {
  expectStart();
  setSetting(layout().otherSection, L"InstallPath", place_.wstring() + L"\\");
  expectStart();
  const Ended diagnosis = run(layout().tools(), {L"doctor", place_.wstring()});
  EXPECT_NE(diagnosis.output, "");
  for (const char* wrong : {"stops the program", "looks for"})
    EXPECT_EQ(diagnosis.output.find(wrong), std::string::npos) << diagnosis.output;
}

INSTANTIATE_TEST_SUITE_P(Named, Folders,
                         testing::Values(L"Yaz\u0131l\u0131m \u00B5",
                                         L"\u041F\u0440\u043E\u0433\u0440\u0430\u043C\u043C\u044B "
                                         L"\u0441\u0432\u044F\u0437\u0438",
                                         L"\u10E1\u10D0\u10E5\u10D0\u10E0\u10D7\u10D5\u10D4\u10DA\u10DD",
                                         L"\u969C\u5BB3 \u8868\u793A",
                                         L"\u03A0\u03AF\u03BD\u03B1\u03BA\u03B1\u03C2"));

}  // namespace
}  // namespace vordane::suite
