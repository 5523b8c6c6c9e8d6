#include "preferences/WallpaperTypes.h"

namespace preferences {

const std::vector<std::string>& allowedWallpaperTypes() {
  static const std::vector<std::string> types{
      "jpeg", "jpg", "png",     "tga",  "pict", "tiff", "tif",  "pct", "pic", "jp2", "jpf", "j2k",
      "jpx",  "j2c", "gif",     "AI",   "GIF",  "bmp",  "dng",  "dae", "eps", "fax", "fpx", "hdr",
      "icns", "ico", "openexr", "ps",   "psd",  "pntg", "qtif", "rad", "sgi", "xbm", "pic", "jpe",
      "heic", "mpo", "exr",     "rgbe", "xyze", "mos",  "cr2",  "fff", "nef", "nrw", "pef", "sr2",
      "srf",  "3fr", "arw",     "crw",  "dcr",  "erf",  "gpr",  "iiq", "kdc", "mdc", "mef", "mrw",
      "orf",  "raf", "rwl",     "srw",  "x3f",  "pbm",  "psb"};
  return types;
}

}  // namespace preferences
