#include "platform/system/file_types.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace platform::system {
namespace {

/// Raster images, including camera raw files. Sorted for the binary search.
constexpr std::string_view kImageExtensions[] = {
    "3fr",  "apng",  "arw",  "astc", "avci", "avif", "bmp", "cr2", "cr3",  "crw",  "cur",
    "dcr",  "dds",   "dib",  "dng",  "erf",  "exr",  "fff", "gif", "hdr",  "heic", "heics",
    "heif", "heifs", "hif",  "icns", "ico",  "iiq",  "j2c", "j2k", "jfif", "jp2",  "jpc",
    "jpe",  "jpeg",  "jpf",  "jpg",  "jpx",  "jxl",  "k25", "kdc", "mos",  "mrw",  "nef",
    "nrw",  "orf",   "pbm",  "pct",  "pcx",  "pef",  "pgm", "pic", "pict", "png",  "pnm",
    "ppm",  "psb",   "psd",  "raf",  "raw",  "rw2",  "rwl", "sgi", "sr2",  "srf",  "srw",
    "tga",  "tif",   "tiff", "webp", "x3f",  "xbm",  "xpm"};
static_assert(std::is_sorted(std::begin(kImageExtensions), std::end(kImageExtensions)));

}  // namespace

FileType fileTypeOf(std::string_view filename) {
  std::string lowercased(pathExtension(filename));
  for (char& c : lowercased) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  }
  if (lowercased == "pdf") return {.conformsToPDF = true};
  if (lowercased == "svg" || lowercased == "svgz") {
    return {.conformsToSVG = true, .conformsToImage = true};
  }
  return {.conformsToImage =
              std::binary_search(std::begin(kImageExtensions), std::end(kImageExtensions),
                                 std::string_view(lowercased))};
}

std::string_view pathExtension(std::string_view filename) {
  const std::size_t dot = filename.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return {};
  return filename.substr(dot + 1);
}

}  // namespace platform::system
