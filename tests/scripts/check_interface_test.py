"""Feeds scripts/check-interface headers that differ from a list, and versions that have risen or not."""
import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "scripts" / "check-interface"
LIST = "packaging/sdk/interface.txt"

HEADER = r"""#pragma once

// Public { and not complete

#include "Tools/Object.h" // {
#  include <string>

namespace Tools {

class Forward;
static_assert(sizeof(int) == 4);

inline constexpr int limit = int{5};
inline constexpr const char* pattern = R"({"(\d*) // no comment)";

enum class Kind {
    First, ///< of two
    Second
};

/// A shape.
class IShape : public virtual IObject {
public:
    virtual ~IShape() = default;
    virtual double Area(double scale = double{1}) const = 0;

protected:
    IShape() = default;

private:
    virtual std::string Hidden() = 0;
    std::string Seen() const override;
    int m_count = 0;
};

template <typename T>
requires(sizeof(T) == 1)
struct Box {
    explicit Box(T content) : m_content(content) { Use({content}); }
    template <typename U>
    U As() const;
    enum { size = 3 };
    class Iterator;
    T m_content{};
};

template <typename T>
template <typename U>
U Box<T>::As() const {
    return U(m_content);
}

bool operator==(const IShape& left,
                const IShape& right);

inline std::string Name() {
    if (limit > 4) { return "}"; }
    return "';";
}

} // namespace Tools

struct Global {
    int value = 0;
};
"""

LINES = """The public interface of version 1.2.3; scripts/check-interface --write writes it.

Tools/Shape.h
    #include "Tools/Object.h"
    #include <string>
    Tools: inline constexpr int limit = int{5}
    Tools: inline constexpr const char* pattern = R"({"(\\d*) // no comment)"
    Tools: enum class Kind { First, Second }
    Tools: class IShape : public virtual IObject
    Tools::IShape: virtual ~IShape() = default
    Tools::IShape: virtual double Area(double scale = double{1}) const = 0
    Tools::IShape: protected IShape() = default
    Tools::IShape: private virtual std::string Hidden() = 0
    Tools::IShape: private std::string Seen() const override
    Tools: template <typename T> requires(sizeof(T) == 1) struct Box
    Tools::Box: explicit Box(T content)
    Tools::Box: template <typename U> U As() const
    Tools::Box: enum { size = 3 }
    Tools::Box: T m_content{}
    Tools: bool operator==(const IShape& left, const IShape& right)
    Tools: inline std::string Name()
    struct Global
    Global: int value = 0
"""


class CheckInterfaceTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        self.write("src/Tools/Shape.h", HEADER)
        self.write("cmake/Sdk.cmake", "# The list:\nset(sdk_headers\n    Tools/Shape.h)\nset(other x)\n")
        self.write(LIST, LINES)
        self.set_version("1.2.3")

    def write(self, path, text):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text)

    def set_version(self, version, date="not released yet"):
        self.write("CMakeLists.txt", f"project(Shapes VERSION {version} LANGUAGES CXX)\n")
        self.write("CHANGELOG.md", f"# Changelog\n\n## [{version}] - {date}\n\n## [1.0.0] - 2020-01-01\n")

    def change(self, old, new):
        self.assertEqual(1, HEADER.count(old))
        self.write("src/Tools/Shape.h", HEADER.replace(old, new))

    def check(self, *arguments):
        done = subprocess.run([SCRIPT, *arguments, self.root], capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def assert_well(self):
        self.assertEqual((0, ""), self.check())

    def assert_needs(self, version, *differences):
        code, told = self.check()
        *shown, sentence, advice = told.splitlines()
        self.assertEqual((1, list(differences)), (code, shown))
        self.assertIn(f"This takes version {version};", sentence)
        self.assertIn("scripts/check-interface --write", advice)

    def test_the_list_holds_what_programs_see(self):
        self.write(LIST, "")
        self.assertEqual((0, ""), self.check("--write"))
        self.assertEqual(LINES, (self.root / LIST).read_text())

    def test_the_same_interface_is_well_in_each_version(self):
        for version in ["1.2.3", "1.2.4", "1.3.0", "2.0.0"]:
            with self.subTest(version=version):
                self.set_version(version)
                self.assert_well()

    def test_what_no_program_sees_is_well(self):
        for old, new in [("/// A shape.", "// Another text; {"), ("int m_count = 0;", "long m_size = 1;"),
                         ("#  include <string>", "#include <string>\n#include <vector>"), ('return "\';";', "return {};"),
                         ("left,\n                const", "left, const"), (": m_content(content) {", "{"),
                         ("class Forward;", ""), ("return U(m_content);", "return {};")]:
            with self.subTest(old=old):
                self.change(old, new)
                self.assert_well()

    def test_what_is_new_takes_a_minor_version(self):
        self.change("struct Global {", "struct Global {\n    int Size() const { return 3; }")
        added = "+ Tools/Shape.h: Global: int Size() const"
        self.assert_needs("1.3.0", added)
        self.set_version("1.2.9")
        self.assert_needs("1.3.0", added)
        for version in ["1.3.0", "1.4.2", "2.0.0"]:
            self.set_version(version)
            self.assert_well()

    def test_what_is_gone_or_changed_takes_a_major_version(self):
        for old, new, *told in [
                ("double scale = double{1}", "double scale",
                 "- Tools/Shape.h: Tools::IShape: virtual double Area(double scale = double{1}) const = 0",
                 "+ Tools/Shape.h: Tools::IShape: virtual double Area(double scale) const = 0"),
                ("IShape : public virtual IObject", "IShape",
                 "- Tools/Shape.h: Tools: class IShape : public virtual IObject",
                 "+ Tools/Shape.h: Tools: class IShape"),
                ("    Second\n", "    Third\n",
                 "- Tools/Shape.h: Tools: enum class Kind { First, Second }",
                 "+ Tools/Shape.h: Tools: enum class Kind { First, Third }"),
                ("int{5}", "int{6}",
                 "- Tools/Shape.h: Tools: inline constexpr int limit = int{5}",
                 "+ Tools/Shape.h: Tools: inline constexpr int limit = int{6}"),
                ("virtual std::string Hidden() = 0;", "",
                 "- Tools/Shape.h: Tools::IShape: private virtual std::string Hidden() = 0"),
                ("Seen() const override;", "Seen() override;",
                 "- Tools/Shape.h: Tools::IShape: private std::string Seen() const override",
                 "+ Tools/Shape.h: Tools::IShape: private std::string Seen() override"),
                ("#  include <string>\n", "", "- Tools/Shape.h: #include <string>"),
                ("protected:\n    IShape() = default;\n", "",
                 "- Tools/Shape.h: Tools::IShape: protected IShape() = default"),
                ("    int value = 0;", "private:\n    int value = 0;", "- Tools/Shape.h: Global: int value = 0")]:
            with self.subTest(old=old):
                self.set_version("1.3.0")
                self.change(old, new)
                self.assert_needs("2.0.0", *told)
                self.set_version("2.0.0")
                self.assert_well()

    def test_a_pure_virtual_function_takes_a_major_version_in_a_class_that_was_there(self):
        self.set_version("1.3.0")
        self.change("\nprotected:", "    virtual void Draw() = 0;\nprotected:")
        self.assert_needs("2.0.0", "+ Tools/Shape.h: Tools::IShape: virtual void Draw() = 0")
        self.change("int m_count = 0;", "virtual void Draw() = 0;")
        self.assert_needs("2.0.0", "+ Tools/Shape.h: Tools::IShape: private virtual void Draw() = 0")
        self.change("class Forward;", "class INew {\npublic:\n    virtual void Draw() = 0;\n};")
        self.assert_well()

    def test_a_member_that_is_0_at_first_is_no_pure_virtual_function(self):
        for member in ["std::int32_t other = 0", "void (*call)(int) = 0", "alignas(8) int other = 0"]:
            with self.subTest(member=member):
                self.change("    int value = 0;", f"    int value = 0;\n    {member};")
                self.assert_needs("1.3.0", f"+ Tools/Shape.h: Global: {member}")

    def test_each_form_of_a_pure_virtual_function_is_known(self):
        for function in ["virtual int Draw(int (*call)(int)) const = 0", "virtual int Draw() const& noexcept = 0",
                         "auto Draw() -> int = 0", "void Seen() override = 0", "virtual int Draw() noexcept(true) = 0",
                         "virtual IShape& operator=(const IShape&) = 0", "[[nodiscard]] virtual int Draw() = 0"]:
            with self.subTest(function=function):
                self.change("\nprotected:", f"    {function};\nprotected:")
                self.assert_needs("2.0.0", f"+ Tools/Shape.h: Tools::IShape: {function}")

    def test_a_deleted_function_takes_a_major_version_but_in_a_class_that_is_new(self):
        for old, place, function in [
                ("    int value = 0;", "Global: ", "Global(const Global&) = delete"),
                ("    U As() const;", "Tools::Box: ", "void Take(long) = delete"),
                ("class Forward;", "Tools: ", "template <typename T> void Take(T) = delete")]:
            with self.subTest(function=function):
                self.change(old, f"{old}\n    {function};")
                self.assert_needs("2.0.0", f"+ Tools/Shape.h: {place}{function}")
        self.change("class Forward;", "class [[nodiscard]] New {\npublic:\n    New(const New&) = delete;\n};")
        self.assert_needs("1.3.0", "+ Tools/Shape.h: Tools: class [[nodiscard]] New",
                          "+ Tools/Shape.h: Tools::New: New(const New&) = delete")
        self.change("struct Global {", "void Take(long) = delete;\nstruct Global {")
        self.assert_needs("2.0.0", "+ Tools/Shape.h: void Take(long) = delete")

    def test_a_first_constructor_takes_a_major_version_and_a_further_one_does_not(self):
        for constructor in ["explicit Global(int first)", "template <typename T> explicit(true) Global(T first)",
                            "constexpr Global() = default"]:
            with self.subTest(constructor=constructor):
                self.change("    int value = 0;", f"    int value = 0;\n    {constructor};")
                self.assert_needs("2.0.0", f"+ Tools/Shape.h: Global: {constructor}")
        self.change("    int value = 0;", "    int value = 0;\nprotected:\n    template <int n>\n    Global(int first);")
        self.assert_needs("2.0.0", "+ Tools/Shape.h: Global: protected template <int n> Global(int first)")
        self.change("    U As() const;", "    U As() const;\n    Box(T first, T second);")
        self.assert_needs("1.3.0", "+ Tools/Shape.h: Tools::Box: Box(T first, T second)")

    def test_an_attribute_that_only_warns_takes_a_minor_version(self):
        for old, new, before, after in [
                ("struct Global {", "struct [[nodiscard]] Global {", "struct Global", "struct [[nodiscard]] Global"),
                ("class IShape :", 'class [[deprecated("Not ]] or }; but \'Box\'.")]] IShape :',
                 "Tools: class IShape : public virtual IObject",
                 'Tools: class [[deprecated("Not ]] or }; but \'Box\'.")]] IShape : public virtual IObject'),
                ("inline std::string Name() {", "[[nodiscard]] inline std::string Name() {",
                 "Tools: inline std::string Name()", "Tools: [[nodiscard]] inline std::string Name()")]:
            with self.subTest(new=new):
                self.set_version("1.2.9")
                self.change(old, new)
                self.assert_needs("1.3.0", f"- Tools/Shape.h: {before}", f"+ Tools/Shape.h: {after}")
                self.set_version("1.3.0")
                self.assert_well()
        self.change("bool operator==", "[[noreturn]] bool operator==")
        self.assert_needs("2.0.0",
                          "- Tools/Shape.h: Tools: bool operator==(const IShape& left, const IShape& right)",
                          "+ Tools/Shape.h: Tools: [[noreturn]] bool operator==(const IShape& left, const IShape& right)")

    def test_a_header_with_conditions_or_macros_cannot_be_compared(self):
        for line in ["#if 1", "#ifdef _WIN32", "#  ifndef X", "#define TWO_LINES { \\\n    }", "#undef X",
                     "#pragma pack(1)"]:
            with self.subTest(line=line):
                self.change("class Forward;", f"class Forward;\n{line}\n")
                self.assertEqual((2, f"check-interface: Tools/Shape.h: a public header holds {line}; "
                                     "only #include and #pragma once can be compared\n"), self.check())

    def test_a_header_that_leaves_the_list_takes_a_major_version(self):
        self.write("cmake/Sdk.cmake", "set(sdk_headers\n    Tools/Other.h)\n")
        self.write("src/Tools/Other.h", HEADER)
        code, told = self.check()
        self.assertEqual(1, code)
        self.assertIn("- Tools/Shape.h: Global: int value = 0\n", told)
        self.assertIn("+ Tools/Other.h: Global: int value = 0\n", told)
        self.assertIn("This takes version 2.0.0;", told)

    def test_a_version_with_a_date_has_a_list_of_its_own(self):
        self.set_version("1.3.0", "2021-05-06")
        code, told = self.check()
        self.assertEqual((1, f"{LIST} is that of 1.2.3, but 1.3.0 has a date in CHANGELOG.md: "
                             "scripts/check-interface --write\n"), (code, told))
        self.assertEqual((0, ""), self.check("--write"))
        self.assertEqual(LINES.replace("1.2.3", "1.3.0"), (self.root / LIST).read_text())
        self.assert_well()

    def test_a_folder_without_such_a_tree_is_told(self):
        for path in ["CMakeLists.txt", "CHANGELOG.md", "cmake/Sdk.cmake", "src/Tools/Shape.h", LIST]:
            with self.subTest(path=path):
                self.setUp()
                (self.root / path).unlink()
                self.assertEqual((2, f"check-interface: {self.root} has no {path}\n"), self.check())


if __name__ == "__main__":
    unittest.main()
