#pragma once

#include "desktop/linux/process/FileDescriptor.h"

namespace harness {

using linux_desktop::FileDescriptor;

}  // namespace harness
