#include "png.h"

#include <zlib.h>

namespace qz::pdf {
namespace {

constexpr int effort = 5;  // of zlib, from 1 to 9

int channels(PngColours colours) {
  return colours == PngColours::kRgba ? 4 : colours == PngColours::kRgb ? 3 : 1;
}

// Compresses what the stream has got to read, and appends it.
void deflateInto(fz_context* context, fz_buffer* data, z_stream& stream, int flush) {
  uint8_t block[16384];
  do {
    stream.next_out = block;
    stream.avail_out = sizeof block;
    deflate(&stream, flush);
    fz_append_data(context, data, block, sizeof block - stream.avail_out);
  } while (stream.avail_out == 0);
}

// Whole bytes are told from the same ones of the pixel before.
void filterRow(uint8_t* row, size_t stride, const PngForm& form) {
  const bool whole = form.bits == 8 && form.colours != PngColours::kPalette;
  const size_t step = static_cast<size_t>(channels(form.colours));
  for (size_t i = stride; whole && i-- > step;)
    row[1 + i] = static_cast<uint8_t>(row[1 + i] - row[1 + i - step]);
  row[0] = whole ? 1 : 0;
}

// The rows as PNG's data, to be dropped by the caller.
fz_buffer* compress(fz_context* context, const PngForm& form, fz_stream* rows) {
  const size_t bits = static_cast<size_t>(form.width) * static_cast<size_t>(form.bits) *
                      static_cast<size_t>(channels(form.colours));
  const size_t stride = (bits + 7) / 8;
  uint8_t* row = nullptr;
  fz_buffer* data = nullptr;
  z_stream stream = {};
  fz_var(row);
  fz_var(data);
  if (deflateInit(&stream, effort) != Z_OK)
    fz_throw(context, FZ_ERROR_GENERIC, "an image cannot be compressed");
  fz_try(context) {
    row = static_cast<uint8_t*>(fz_malloc(context, 1 + stride));
    data = fz_new_buffer(context, 4096);
    for (int y = 0; y < form.height; ++y) {
      const size_t read = fz_read(context, rows, row + 1, stride);
      std::fill(row + 1 + read, row + 1 + stride, uint8_t{0});
      filterRow(row, stride, form);
      stream.next_in = row;
      stream.avail_in = static_cast<uInt>(1 + stride);
      deflateInto(context, data, stream, y + 1 < form.height ? Z_NO_FLUSH : Z_FINISH);
    }
  }
  fz_always(context) {
    deflateEnd(&stream);
    fz_free(context, row);
  }
  fz_catch(context) {
    fz_drop_buffer(context, data);
    fz_rethrow(context);
  }
  return data;
}

void putChunk(fz_context* context, fz_buffer* file, const char* type, const uint8_t* data,
              size_t size) {
  uLong check = crc32(0, reinterpret_cast<const uint8_t*>(type), 4);
  if (size > 0) check = crc32(check, data, static_cast<uInt>(size));
  fz_append_int32_be(context, file, static_cast<int>(size));
  fz_append_data(context, file, type, 4);
  fz_append_data(context, file, data, size);
  fz_append_int32_be(context, file, static_cast<int>(check));
}

void putHeader(fz_context* context, fz_buffer* file, const PngForm& form) {
  const auto byte = [](int value, int shift) { return static_cast<uint8_t>(value >> shift); };
  const int w = form.width, h = form.height;
  const uint8_t header[13] = {
      byte(w, 24), byte(w, 16), byte(w, 8), byte(w, 0),         byte(h, 24),
      byte(h, 16), byte(h, 8),  byte(h, 0), byte(form.bits, 0), static_cast<uint8_t>(form.colours),
      0,           0,           0};
  putChunk(context, file, "IHDR", header, sizeof header);
}

void putPalette(fz_context* context, fz_buffer* file, const PngForm& form) {
  uint8_t colours[3 * 256], alphas[256];
  const size_t count = size_t{1} << form.bits;
  bool opaque = true;
  for (size_t i = 0; i < count; ++i) {
    const Colour& c = form.palette[i];
    colours[3 * i] = c.red, colours[3 * i + 1] = c.green, colours[3 * i + 2] = c.blue;
    alphas[i] = c.alpha;
    opaque = opaque && c.alpha == 255;
  }
  putChunk(context, file, "PLTE", colours, 3 * count);
  if (!opaque) putChunk(context, file, "tRNS", alphas, count);
}

}  // namespace

fz_buffer* newPngOfData(fz_context* context, const PngForm& form, fz_buffer* data) {
  uint8_t* bytes = nullptr;
  const size_t size = fz_buffer_storage(context, data, &bytes);
  fz_buffer* const file = fz_new_buffer(context, size + 1024);
  fz_try(context) {
    fz_append_data(context, file, "\x89PNG\r\n\x1A\n", 8);
    putHeader(context, file, form);
    if (form.colours == PngColours::kPalette) putPalette(context, file, form);
    putChunk(context, file, "IDAT", bytes, size);
    putChunk(context, file, "IEND", nullptr, 0);
  }
  fz_catch(context) {
    fz_drop_buffer(context, file);
    fz_rethrow(context);
  }
  return file;
}

fz_buffer* newPng(fz_context* context, const PngForm& form, fz_stream* rows) {
  fz_buffer* const data = compress(context, form, rows);
  fz_buffer* file = nullptr;
  fz_var(file);
  fz_try(context) file = newPngOfData(context, form, data);
  fz_always(context) fz_drop_buffer(context, data);
  fz_catch(context) fz_rethrow(context);
  return file;
}

}  // namespace qz::pdf
