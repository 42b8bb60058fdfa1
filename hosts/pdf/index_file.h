// index.html: all pages of a document in one file, in the viewer.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace qz::pdf {

// Writes it, with the pages that these files hold. Throws std::runtime_error when one cannot be
// read.
void writeIndex(std::ostream& out, const std::string& title,
                const std::vector<std::filesystem::path>& pages);

}  // namespace qz::pdf
