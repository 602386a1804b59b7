#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include "Tools/SarvexTool/Bench/Output/Page/DataBlock.h"
#include "Tools/SarvexTool/Bench/Output/Page/Embedded.h"
#include "Tools/SarvexTool/Bench/Output/Page/Head.h"
#include "Tools/SarvexTool/Bench/Output/Page/Template.h"

#include <ostream>

namespace Bench {

void WritePage(const Page& page, std::ostream& out) {
    WriteContent({page.subject + " - " + page.kind, Embedded::runBody, Embedded::runScript,
                  [&page](std::ostream& head) { WriteHead(page, head); },
                  [&page](std::ostream& data) { WriteDataBlock(page, data); }},
                 out);
}

} // namespace Bench
