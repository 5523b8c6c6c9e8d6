#pragma once

#include "desktop/linux/files/FileDescriptor.h"

namespace harness {

using linux_desktop::FileDescriptor;

}  // namespace harness
