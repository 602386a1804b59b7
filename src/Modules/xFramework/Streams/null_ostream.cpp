#include "Modules/xFramework/Streams/null_ostream.h"

// Nothing else to define: this file brings the process-wide null streams into every program that it
// is linked into, whether or not another file of the program uses them.
