#include "Modules/xFramework/Utilities/FileText.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

namespace Utilities {
namespace {

TEST(FileText, IsAllBytesOfTheFile) {
    for (const std::size_t size : {0u, 1u, 4095u, 4096u, 4097u, 20000u}) {
        SCOPED_TRACE(size);
        OSAL::Fake::Reset();
        std::string content(size, 'x');
        for (std::size_t index = 0; index < size; ++index)
            content[index] = static_cast<char>(index);
        OSAL::Fake::TheWorld().files["/bench/file"].content = content;
        EXPECT_EQ(ReadFileText("/bench/file"), content);
        EXPECT_EQ(OSAL::Fake::CountCalls("CloseHandle 7"), 1);
    }
}

TEST(FileText, IsEmptyWithoutAFile) {
    OSAL::Fake::Reset();
    EXPECT_EQ(ReadFileText("/bench/file"), "");
}

} // namespace
} // namespace Utilities
