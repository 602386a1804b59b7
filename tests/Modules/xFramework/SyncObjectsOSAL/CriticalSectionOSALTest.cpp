#include "Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h"

#include "Modules/xFramework/DebugPrint/CDebugPrint.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace SyncObjectsOSAL {
namespace {

using OSAL::Fake::TheWorld;
using testing::ElementsAre;
using testing::IsEmpty;

class BarredFormatter : public IDebugLineFormatter {
public:
    void FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                    std::size_t size) override {
        const std::string line = std::string(context) + "|" + tag + "|" + text;
        buffer[line.copy(buffer, size - 1)] = '\0';
    }
};

class ListSink : public IDebugSink {
public:
    void Write(const char* line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
};

/// The process-wide debug printer listens for as long as the fixture lives.
class CriticalSectionOSALTest : public testing::Test {
protected:
    CriticalSectionOSALTest() {
        OSAL::Fake::Reset();
        printer.SetFormatter(new BarredFormatter);
        printer.SetSink(0, &sink);
        printer.SetThreshold(0, 15);
    }
    ~CriticalSectionOSALTest() override {
        printer.SetThreshold(0, 0);
        printer.SetSink(0, nullptr);
        printer.SetFormatter(nullptr);
    }

    CDebugPrint& printer = CDebugPrint::Instance();
    ListSink sink;
};

TEST_F(CriticalSectionOSALTest, CreatesAndReleasesOneLockOfTheSystem) {
    {
        const CriticalSectionOSAL section;
        EXPECT_EQ(TheWorld().criticalSections, 1);
    }
    EXPECT_EQ(TheWorld().criticalSections, 0);
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(CriticalSectionOSALTest, PassesEntriesOnToTheSystem) {
    CriticalSectionOSAL section;
    EXPECT_EQ(section.Enter(), 0);
    EXPECT_EQ(section.Enter(), 0);
    EXPECT_EQ(section.Leave(), 0);
    EXPECT_EQ(section.Leave(), 0);
    EXPECT_THAT(TheWorld().calls, ElementsAre("EnterCriticalSection", "EnterCriticalSection",
                                              "LeaveCriticalSection", "LeaveCriticalSection"));
}

TEST_F(CriticalSectionOSALTest, ReportsAFailedCreationOnceAndItsDestructionNotAtAll) {
    TheWorld().criticalSectionsCanBeCreated = false;
    { const CriticalSectionOSAL section; }
    EXPECT_THAT(sink.lines, ElementsAre("SyncObjectsOSAL::CriticalSectionOSAL::CriticalSectionOSAL|"
                                        "[ ERROR1      ]|Failed initializing CriticalSectionOSAL"));
    EXPECT_EQ(TheWorld().criticalSections, 0);
}

TEST_F(CriticalSectionOSALTest, ReportsNothingWhileTheDebugPrinterIsOff) {
    printer.SetThreshold(0, 0);
    TheWorld().criticalSectionsCanBeCreated = false;
    { const CriticalSectionOSAL section; }
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(CriticalSectionOSALTest, CreationStepTellsWhetherThereIsALock) {
    OSAL::CriticalSection* handle = nullptr;
    EXPECT_EQ(CreateHandle(handle), 0);
    EXPECT_NE(handle, nullptr);
    ReleaseHandle(handle);

    TheWorld().criticalSectionsCanBeCreated = false;
    EXPECT_EQ(CreateHandle(handle), 1);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(CriticalSectionOSALTest, ReleaseStepClearsTheHandleAndRefusesNone) {
    OSAL::CriticalSection* handle = nullptr;
    CreateHandle(handle);
    EXPECT_EQ(ReleaseHandle(handle), 0);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(TheWorld().criticalSections, 0);
    EXPECT_EQ(ReleaseHandle(handle), 4);
    EXPECT_EQ(TheWorld().criticalSections, 0);
}

TEST_F(CriticalSectionOSALTest, IsDestroyedThroughTheCommonBaseOfSynchronisationObjects) {
    std::unique_ptr<ISyncInterface> object = std::make_unique<CriticalSectionOSAL>();
    EXPECT_EQ(TheWorld().criticalSections, 1);
    object.reset();
    EXPECT_EQ(TheWorld().criticalSections, 0);
}

/// Two ways to the common base: both must lead to one object.
class OtherSyncObject : public virtual ISyncInterface {};
class CombinedObject : public CriticalSectionOSAL, public OtherSyncObject {};

TEST_F(CriticalSectionOSALTest, SharesTheCommonBaseWithOtherInterfaces) {
    static_assert(std::is_convertible_v<CombinedObject*, ISyncInterface*>);
    static_assert(std::is_nothrow_destructible_v<CriticalSectionOSAL>);
    CombinedObject object;
    ISyncInterface* const base = &object;
    EXPECT_EQ(dynamic_cast<OtherSyncObject*>(base), static_cast<OtherSyncObject*>(&object));
}

} // namespace
} // namespace SyncObjectsOSAL
