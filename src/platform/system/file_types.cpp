#include "platform/system/file_types.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace platform::system {
namespace {

/// Raster images, camera raw files among them; in order, for the search by halves.
constexpr std::string_view kImageExtensions[] = {
    "3fr",  "apng",  "arw",  "astc", "avci", "avif", "bmp", "cr2", "cr3",  "crw",  "cur",
    "dcr",  "dds",   "dib",  "dng",  "erf",  "exr",  "fff", "gif", "hdr",  "heic", "heics",
    "heif", "heifs", "hif",  "icns", "ico",  "iiq",  "j2c", "j2k", "jfif", "jp2",  "jpc",
    "jpe",  "jpeg",  "jpf",  "jpg",  "jpx",  "jxl",  "k25", "kdc", "mos",  "mrw",  "nef",
    "nrw",  "orf",   "pbm",  "pct",  "pcx",  "pef",  "pgm", "pic", "pict", "png",  "pnm",
    "ppm",  "psb",   "psd",  "raf",  "raw",  "rw2",  "rwl", "sgi", "sr2",  "srf",  "srw",
    "tga",  "tif",   "tiff", "webp", "x3f",  "xbm",  "xpm"};
static_assert(std::is_sorted(std::begin(kImageExtensions), std::end(kImageExtensions)));

constexpr std::size_t kLongestExtension = 5;

}  // namespace

FileType fileTypeOf(std::string_view filename) {
  const std::string_view extension = pathExtension(filename);
  if (extension.empty() || extension.size() > kLongestExtension) return {};
  std::array<char, kLongestExtension> buffer;
  std::transform(extension.begin(), extension.end(), buffer.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  const std::string_view lowercased(buffer.data(), extension.size());
  if (lowercased == "pdf") return {.conformsToPDF = true};
  if (lowercased == "svg" || lowercased == "svgz") {
    return {.conformsToSVG = true, .conformsToImage = true};
  }
  return {.conformsToImage = std::binary_search(std::begin(kImageExtensions),
                                                std::end(kImageExtensions), lowercased)};
}

std::string_view pathExtension(std::string_view filename) {
  const std::size_t dot = filename.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return {};
  return filename.substr(dot + 1);
}

}  // namespace platform::system
