// `tesk diff` as its users run it.

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr const char* kQualifiers = R"(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);
Qualifier MaxLen : uint32 = null, Scope(property, method, parameter);
)";

class DiffCommand : public testing::Test {
  protected:
    // Writes classes as MOF; returns the path, quoted for the shell.
    [[nodiscard]] std::string write(const std::string& name, const std::string& classes) const {
        return "'" + directory_.write(name, kQualifiers + classes).string() + "'";
    }

    // Exports MOF; returns the directory, quoted for the shell.
    [[nodiscard]] std::string exported(const std::string& mof, const std::string& options = "") {
        const std::string output = "'" + (directory_ / "documents").string() + "'";
        EXPECT_EQ(
            runTesk("export --output " + output + " --namespace root/cimv2=" + mof + options).end,
            "status 0");
        return output;
    }

    // With paths below the directory of the test as they were written.
    [[nodiscard]] std::string shown(const std::string& text) const {
        return replaced(text, directory_.path().string() + "/", "");
    }

    const TemporaryDirectory directory_;
    const std::string old_ = write("old.mof",
                                   "class A_Fan { [Key] string Id; [MaxLen(64)] string Name; };\n"
                                   "class A_Gone { [Key] string Id; };\n");
    const std::string new_ =
        write("new.mof", "class A_Fan { [Key] string Id; [MaxLen(32)] string Name; uint8 Rank; };");
};

TEST_F(DiffCommand, SaysWhatChangesAndWhetherItBreaksClients) {
    const ProgramRun run = runTesk("diff " + old_ + " " + new_);
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output,
              "breaking: root/cimv2:A_Fan.Name: the maximum length was 64 and is 32 "
              "(length-lowered)\n"
              "breaking: root/cimv2:A_Gone: the class is gone (class-removed)\n"
              "compatible: root/cimv2:A_Fan.Rank: the property is new (property-added)\n"
              "2 classes: 2 breaking changes, 1 compatible\n");
}

TEST_F(DiffCommand, EndsWellWithoutBreakingChanges) {
    const ProgramRun same = runTesk("diff " + old_ + " " + old_);
    EXPECT_EQ(same.end, "status 0");
    EXPECT_EQ(same.output, "2 classes: 0 breaking changes, 0 compatible\n");
    const ProgramRun more = runTesk("diff " + new_ + " " +
                                    write("more.mof",
                                          "class A_Fan { [Key] string Id; [MaxLen(40)] "
                                          "string Name; uint8 Rank; };"));
    EXPECT_EQ(more.end, "status 0");
    EXPECT_EQ(more.output,
              "compatible: root/cimv2:A_Fan.Name: the maximum length was 32 and is 40 "
              "(length-raised)\n"
              "1 class: 0 breaking changes, 1 compatible\n");
}

TEST_F(DiffCommand, WritesJsonForPrograms) {
    const ProgramRun run = runTesk("diff " + new_ + " " + old_ + " --format json");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(json::parse(run.output), json({{"classes", 2},
                                             {"breaking", 1},
                                             {"compatible", 2},
                                             {"accepted", 0},
                                             {"changes",
                                              {{{"severity", "breaking"},
                                                {"rule", "property-removed"},
                                                {"namespace", "root/cimv2"},
                                                {"class", "A_Fan"},
                                                {"member", "Rank"},
                                                {"message", "the property is gone"}},
                                               {{"severity", "compatible"},
                                                {"rule", "length-raised"},
                                                {"namespace", "root/cimv2"},
                                                {"class", "A_Fan"},
                                                {"member", "Name"},
                                                {"message", "the maximum length was 32 and is 64"}},
                                               {{"severity", "compatible"},
                                                {"rule", "class-added"},
                                                {"namespace", "root/cimv2"},
                                                {"class", "A_Gone"},
                                                {"member", ""},
                                                {"message", "the class is new"}}}}}));
}

TEST_F(DiffCommand, ComparesAnExportWithMofAndWithWhatOptionsName) {
    const std::string documents = exported(old_);
    for (const std::string& after :
         {old_, "root/cimv2=" + old_, "--namespace root/cimv2=" + old_}) {
        const ProgramRun run = runTesk("diff " + documents + " " + after);
        EXPECT_EQ(run.end, "status 0") << after;
        EXPECT_EQ(run.output, "2 classes: 0 breaking changes, 0 compatible\n");
        EXPECT_EQ(run.errors, "");
    }
    EXPECT_EQ(runTesk("diff " + documents + " " + documents).end, "status 0");
}

TEST_F(DiffCommand, AnAddressThatChangesEverywhereIsOneChange) {
    const std::string documents = exported(old_, " --host other:80");
    const ProgramRun run = runTesk("diff " + documents + " " + old_);
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output,
              "breaking: *:*: the address of the service was http://other:80/wsman and is "
              "http://localhost:5985/wsman (address-changed)\n"
              "2 classes: 1 breaking change, 0 compatible\n");
    EXPECT_EQ(runTesk("diff " + documents + " " + old_ + " --host other:80").end, "status 0");
}

TEST_F(DiffCommand, AcceptedChangesDoNotCount) {
    const std::string accepted = "'" +
                                 directory_
                                     .write("accepted.txt",
                                            "# agreed with all clients\n"
                                            "class-removed root/cimv2:A_Gone\n\n"
                                            "  length-lowered   root/cimv2:A_Fan.Name \n")
                                     .string() +
                                 "'";
    const ProgramRun run = runTesk("diff " + old_ + " " + new_ + " --accepted " + accepted);
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output,
              "compatible: root/cimv2:A_Fan.Rank: the property is new (property-added)\n"
              "2 classes: 0 breaking changes, 1 compatible, 2 accepted\n");
    const ProgramRun later = runTesk("diff " + new_ + " " + new_ + " --accepted " + accepted);
    EXPECT_EQ(later.end, "status 1");
    EXPECT_EQ(later.output, "1 class: 0 breaking changes, 0 compatible\n");
    EXPECT_EQ(shown(later.errors),
              "accepted.txt:2: no such change: class-removed root/cimv2:A_Gone\n"
              "accepted.txt:4: no such change: length-lowered root/cimv2:A_Fan.Name\n");
}

TEST_F(DiffCommand, RefusesAcceptedChangesThatAreNone) {
    for (const char* const line : {"class-removed", "class-gone root/cimv2:A",
                                   "class-removed A_Gone", "class-removed root/cimv2:A B"}) {
        const std::string file =
            directory_.write("accepted.txt", std::string("\n") + line + "\n").string();
        const ProgramRun run = runTesk("diff " + old_ + " " + new_ + " --accepted '" + file + "'");
        EXPECT_EQ(run.end, "status 1") << line;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(shown(run.errors), std::string(R"(tesk: accepted.txt:2: ")") + line +
                                         "\" is not a rule and a place, such as type-changed "
                                         "root/cimv2:CIM_Foo.Bar\n");
    }
}

TEST_F(DiffCommand, SaysWhatCannotBeCompared) {
    const std::pair<std::string, std::string> cases[] = {
        {"diff " + old_ + " nowhere", R"(tesk: "nowhere" is not there)"},
        {"diff " + old_ + " " + new_ + " --accepted nowhere",
         "tesk: nowhere cannot be read: No such file or directory"},
        {"diff " + old_ + " root/b=nowhere",
         "nowhere: error: cannot be read: No such file or directory\n"
         "tesk: the classes have errors and are not used"},
    };
    for (const auto& [arguments, message] : cases) {
        const ProgramRun run = runTesk(arguments);
        EXPECT_EQ(run.end, "status 1");
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, message + "\n");
    }
}

TEST_F(DiffCommand, NeedsTwoVersions) {
    EXPECT_EQ(runTesk("diff " + old_).end, "status 2");
    EXPECT_EQ(runTesk("diff " + old_ + " " + new_ + " --namespace root/cimv2=" + new_).end,
              "status 2");
}

TEST_F(DiffCommand, NamesTheDocumentThatIsNone) {
    const std::string documents = exported(old_);
    (void)directory_.write("documents/root/cimv2/A_Gone.wsdl", "<a/>");
    const ProgramRun run = runTesk("diff " + documents + " " + old_);
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors,
              "tesk: the document of root/cimv2:A_Gone is not understood: it is no WSDL document "
              "of a class: its outermost element is not \"definitions\"\n");
}

// Each edit of a copy of the DMTF's schema, once.
TEST_F(DiffCommand, FindsEachChangeOfTheDmtfSchema) {
    if (cimSchemaFile().empty())
        GTEST_SKIP() << kNoCimSchema;
    const fs::path schema = cimSchemaFile();
    const fs::path changed = directory_ / "changed";
    fs::copy(schema.parent_path(), changed, fs::copy_options::recursive);
    const auto edit = [&](const std::string& file,
                          const std::vector<std::pair<std::string, std::string>>& edits) {
        std::string text = contentOfFile(changed / file);
        for (const auto& [part, by] : edits) {
            const std::size_t at = text.find(part);
            ASSERT_NE(at, std::string::npos) << part;
            text.replace(at, part.size(), by);
        }
        (void)directory_.write("changed/" + file, text);
    };
    edit("Device/CIM_AlarmDevice.mof",
         {{"boolean AudibleAlarm", "boolean LoudAlarm"},
          {"boolean VisibleAlarm", "string VisibleAlarm"},
          {"boolean MotionAlarm", "boolean MotionAlarm[]"},
          {R"("5", "6" })", R"("5", "7" })"},
          {"[Description ( \n          \"True indicates that the audio",
           "[Required, Description ( \n          \"True indicates that the audio"},
          {"uint16 RequestedAlarmState);",
           "uint16 RequestedAlarmState, [IN] uint16 Tone, [IN(false), OUT] uint16 Before);"},
          {"uint16 AudioIndicator", "uint16 FirstIndicator"},
          {"uint16 VisualIndicator", "uint16 AudioIndicator"},
          {"uint16 FirstIndicator", "uint16 VisualIndicator"},
          {"uint32 SetUrgency", "uint32 SetUrgencyLevel"}});
    edit("Device/CIM_AlarmDeviceCapabilities.mof",
         {{"class CIM_AlarmDeviceCapabilities", "class CIM_AlarmCapabilities"}});
    edit("System/CIM_UnixFile.mof", {{"MaxLen ( 256 )", "MaxLen ( 300 )"},
                                     {"MaxLen ( 1024 )", "MaxLen ( 512 )"},
                                     {"[Required, Description", "[Description"}});
    const ProgramRun run =
        runTesk("diff '" + schema.string() + "' '" + (changed / schema.filename()).string() + "'");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(
        run.output,
        R"(breaking: root/cimv2:CIM_AlarmDevice.AudibleAlarm: the property is gone (property-removed)
breaking: root/cimv2:CIM_AlarmDevice.AudioIndicatorIsDisabled: must have a value now (required-added)
breaking: root/cimv2:CIM_AlarmDevice.MotionAlarm: is now an array (array-changed)
breaking: root/cimv2:CIM_AlarmDevice.SetAlarmIndicator: the order was AudioIndicator, VisualIndicator, MotionIndicator and is VisualIndicator, AudioIndicator, MotionIndicator (order-changed)
breaking: root/cimv2:CIM_AlarmDevice.SetAlarmState.Tone: the request has a new parameter (parameter-added)
breaking: root/cimv2:CIM_AlarmDevice.SetUrgency: the method is gone (method-removed)
breaking: root/cimv2:CIM_AlarmDevice.Urgency: values are not allowed any more: 6 (values-narrowed)
breaking: root/cimv2:CIM_AlarmDevice.VisibleAlarm: the type was boolean and is string (type-changed)
breaking: root/cimv2:CIM_AlarmDeviceCapabilities: the class is gone (class-removed)
breaking: root/cimv2:CIM_UnixFile.LFName: the maximum length was 1024 and is 512 (length-lowered)
compatible: root/cimv2:CIM_AlarmCapabilities: the class is new (class-added)
compatible: root/cimv2:CIM_AlarmDevice.LoudAlarm: the property is new (property-added)
compatible: root/cimv2:CIM_AlarmDevice.SetAlarmState.Before: the response has a new value (result-added)
compatible: root/cimv2:CIM_AlarmDevice.SetUrgencyLevel: the method is new (method-added)
compatible: root/cimv2:CIM_AlarmDevice.Urgency: values are allowed in addition: 7 (values-widened)
compatible: root/cimv2:CIM_UnixFile.CSCreationClassName: the maximum length was 256 and is 300 (length-raised)
compatible: root/cimv2:CIM_UnixFile.UserID: may be without a value now (required-removed)
1,439 classes: 10 breaking changes, 7 compatible
)");
}

}  // namespace
