#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <fstream>

namespace Bench {
namespace {

class FileNamesTest : public testing::Test {
protected:
    std::string Path(const std::string& name) const { return directory.Path(name); }

    TestSupport::TemporaryDirectory directory;
    const std::string input = directory.Create("in.csv", "Band\n5\n");
};

TEST_F(FileNamesTest, DifferentFilesAreFine) {
    EXPECT_EQ(ProblemOfNames({input, input, "-"}, {Path("out.csv"), Path("out.xml"), "-"}),
              std::nullopt);
    EXPECT_EQ(ProblemOfNames({}, {}), std::nullopt);
}

TEST_F(FileNamesTest, AStandardStreamIsNamedOnce) {
    EXPECT_EQ(ProblemOfNames({"-", input, "-"}, {}), "standard input (-) can be read once only");
    EXPECT_EQ(ProblemOfNames({}, {"-", "-"}), "standard output (-) can be written once only");
}

TEST_F(FileNamesTest, AnOutputIsNoInputByWhateverName) {
    const std::filesystem::path file = input;
    std::filesystem::create_hard_link(file, Path("hard.csv"));
    for (const std::string& output : {input, Path("./in.csv"), Path("hard.csv")})
        EXPECT_EQ(ProblemOfNames({"-", input}, {Path("x"), output}),
                  "the output " + output + " would replace the input " + input);
}

TEST_F(FileNamesTest, TwoOutputsAreNotTheSameFileEvenBeforeItExists) {
    const std::string output = Path("new.xml");
    for (const std::string& other : {output, Path("./new.xml")})
        EXPECT_EQ(ProblemOfNames({input}, {output, other}),
                  "the output " + other + " would replace the output " + output);
}

TEST_F(FileNamesTest, AFolderIsTheSameWithASlashAtItsEnd) {
    EXPECT_EQ(ProblemOfNames({Path("new")}, {Path("new") + "/"}),
              "the output " + Path("new") + "/ would replace the input " + Path("new"));
}

TEST_F(FileNamesTest, NamesInFoldersThatAreNotThereDiffer) {
    EXPECT_EQ(ProblemOfNames({}, {Path("a/out.xml"), Path("b/out.xml")}), std::nullopt);
}

TEST_F(FileNamesTest, ANameMayHoldAnyCharacter) {
    const std::string name = directory.Path() + "/Ω 測試.csv";
    std::ofstream(PathOf(name)) << "Band\n";
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(directory.Path()) /
                                        std::filesystem::path(u8"Ω 測試.csv")));
    EXPECT_NE(ProblemOfNames({name}, {directory.Path() + "/./Ω 測試.csv"}), std::nullopt);
}

} // namespace
} // namespace Bench
