#pragma once

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

namespace Bench {

/// A store that cannot be read or written. The file is the store as StoreName shows it: no text of
/// an error has a password.
class StoreError : public BadFile {
public:
    using BadFile::BadFile;
};

/// There is no such store, which for somebody who reads means that no run is kept.
class StoreMissing : public StoreError {
public:
    using StoreError::StoreError;
};

} // namespace Bench
