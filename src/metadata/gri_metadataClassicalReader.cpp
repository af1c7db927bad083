#include "metadata/gri_metadataClassicalReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_sampleKernels.h"
#include "metadata/gri_metadataDatabase.h"
#include "metadata/gri_metadataRecord.h"
#include "metadata/gri_metadataTags.h"

namespace {

constexpr gr_int16 FIRST_UNKNOWN_MAJOR = 2;
constexpr size_t MAX_NAME_BYTES = 100;  // with its zero
constexpr gr_uint32 MAX_DIMS = 10;

// The bytes of the block, read in pieces: names and texts are looked at byte by byte.
class BlockBytes {
 public:
  BlockBytes(GRIOStreamInf& stream, gr_uint64 length) : m_stream(stream), m_unread(length) {}

  gr_uint64 left() const { return (m_end - m_next) + m_unread; }

  GR_STATUS read(gr_uint8* bytes, gr_uint64 length) {
    if (length > left()) return GRI_STATUS_METADATA_CLASSICAL;
    while (length > 0) {
      if (m_next == m_end) GR_RETURN_IF_FAILED(refill());
      const size_t step = static_cast<size_t>(std::min<gr_uint64>(m_end - m_next, length));
      std::memcpy(bytes, m_buffer.data() + m_next, step);
      m_next += step;
      bytes += step;
      length -= step;
    }
    return GR_STATUS_OK;
  }

  GR_STATUS read(gr_uint8& byte) { return read(&byte, 1); }

  template <typename T>
  GR_STATUS readNumber(T& value) {
    std::array<gr_uint8, sizeof(T)> bytes{};
    GR_RETURN_IF_FAILED(read(bytes.data(), bytes.size()));
    gr_uint64 number = 0;
    for (const gr_uint8 byte : bytes) number = (number << 8) | byte;
    value = static_cast<T>(number);
    return GR_STATUS_OK;
  }

 private:
  GR_STATUS refill() {
    const auto wanted =
        static_cast<gr_uint32>(std::min<gr_uint64>(m_unread, gr_uint64{m_buffer.size()}));
    m_next = 0;
    m_end = m_stream.read(m_buffer.data(), wanted);
    m_unread -= wanted;
    return m_end == wanted && wanted > 0 ? GR_STATUS_OK : GRI_STATUS_METADATA_CLASSICAL;
  }

  GRIOStreamInf& m_stream;
  gr_uint64 m_unread;  // bytes of the block that are still in the stream
  std::array<gr_uint8, 4096> m_buffer{};
  size_t m_next = 0;  // of m_buffer
  size_t m_end = 0;
};

GRIMetadataDataType dataTypeOf(gr_uint32 code) {
  switch (code) {
    case 1:
      return GRI_METADATA_DATATYPE_UINT8;
    case 2:
      return GRI_METADATA_DATATYPE_UINT16;
    case 3:
      return GRI_METADATA_DATATYPE_UINT32;
    case 5:
      return GRI_METADATA_DATATYPE_ASCII;
    case 6:
      return GRI_METADATA_DATATYPE_FLOAT32;
    case 7:
      return GRI_METADATA_DATATYPE_FLOAT64;
    case 8:
      return GRI_METADATA_DATATYPE_SINT8;
    case 9:
      return GRI_METADATA_DATATYPE_SINT16;
    case 10:
      return GRI_METADATA_DATATYPE_SINT32;
    default:
      return GRI_METADATA_DATATYPE_INVALID;
  }
}

struct Record {
  std::array<char, MAX_NAME_BYTES> name{};
  GRIMetadataDataType type = GRI_METADATA_DATATYPE_INVALID;
  gr_uint32 count = 0;
  gr_uint32 numDims = 0;
  std::array<gr_uint32, MAX_DIMS> dims{};

  bool isNamed(gr_int32 tag) const {
    return std::strcmp(name.data(), GRIMetadataUtilities::convertTagToString(tag)) == 0;
  }
};

GR_STATUS readName(BlockBytes& bytes, Record& record) {
  for (char& character : record.name) {
    gr_uint8 byte = 0;
    GR_RETURN_IF_FAILED(bytes.read(byte));
    character = static_cast<char>(byte);
    if (byte == 0) return GR_STATUS_OK;
  }
  return GRI_STATUS_METADATA_CLASSICAL;
}

// Type, number of values and dimensions, which say the same number.
GR_STATUS readShape(BlockBytes& bytes, Record& record) {
  gr_uint32 typeCode = 0;
  GR_RETURN_IF_FAILED(bytes.readNumber(typeCode));
  GR_RETURN_IF_FAILED(bytes.readNumber(record.count));
  GR_RETURN_IF_FAILED(bytes.readNumber(record.numDims));
  if (record.numDims > MAX_DIMS) return GRI_STATUS_METADATA_CLASSICAL;
  for (gr_uint32 i = 0; i < record.numDims; ++i) {
    GR_RETURN_IF_FAILED(bytes.readNumber(record.dims[i]));
  }
  record.type = dataTypeOf(typeCode);
  if (record.type == GRI_METADATA_DATATYPE_INVALID ||
      record.count > GRIMetadataRecord::MAX_ELEMENTS) {
    return GRI_STATUS_METADATA_CLASSICAL;
  }
  if (record.numDims == 0) {
    record.numDims = 1;
    record.dims[0] = record.count;
    return GR_STATUS_OK;
  }
  gr_uint32 product = 0;
  const GR_STATUS status =
      GRIMetadataRecord::countElements(record.numDims, record.dims.data(), product);
  return GR_SUCCESS(status) && product == record.count ? GR_STATUS_OK
                                                       : GRI_STATUS_METADATA_CLASSICAL;
}

GR_STATUS readNumbers(BlockBytes& bytes, const Record& record, GRArray<gr_uint8>& values) {
  const gr_uint32 width = GRIMetadataRecord::getElementSize(record.type);
  const gr_uint64 length = gr_uint64{record.count} * width;
  if (length > bytes.left()) return GRI_STATUS_METADATA_CLASSICAL;
  GR_RETURN_IF_FAILED(values.allocateUninitialized(length));
  GR_RETURN_IF_FAILED(bytes.read(values.data(), length));
  gri_copyFromBigEndian(values.data(), record.count, width, values.data());
  return GR_STATUS_OK;
}

// Doubles the room, which never passes what the block can fill.
GR_STATUS growRoom(GRArray<char>& texts, gr_uint64 most) {
  constexpr gr_uint64 FIRST_ROOM = 512;
  GRArray<char> larger;
  const gr_uint64 room = std::max(gr_saturatingMultiply(texts.size(), 2), FIRST_ROOM);
  GR_RETURN_IF_FAILED(larger.allocateUninitialized(std::min(room, most)));
  if (!texts.empty()) std::memcpy(larger.data(), texts.data(), texts.size());
  texts = std::move(larger);
  return GR_STATUS_OK;
}

GR_STATUS readTexts(BlockBytes& bytes, const Record& record, GRArray<char>& texts,
                    GRArray<const char*>& values) {
  if (record.count > bytes.left()) return GRI_STATUS_METADATA_CLASSICAL;
  size_t used = 0;
  for (gr_uint32 i = 0; i < record.count;) {
    gr_uint8 byte = 0;
    const gr_uint64 most = used + bytes.left();
    GR_RETURN_IF_FAILED(bytes.read(byte));
    if (used == texts.size()) GR_RETURN_IF_FAILED(growRoom(texts, most));
    texts[used++] = static_cast<char>(byte);
    if (byte == 0) ++i;
  }
  GR_RETURN_IF_FAILED(values.allocateUninitialized(record.count));
  const char* text = texts.data();
  for (const char*& value : values) {
    value = text;
    text += std::strlen(text) + 1;
  }
  return GR_STATUS_OK;
}

GR_STATUS addRecord(GRIMetadataDatabase& database, const Record& record, const void* values) {
  std::unique_ptr<GRIMetadataRecord> made;
  try {
    made = gr_makeUnique<GRIMetadataRecord>(record.name.data(), record.type, record.numDims,
                                            record.dims.data(), values);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  if (made == nullptr) return GR_STATUS_NO_MEMORY;
  if (database.has(record.name.data())) {
    GR_RETURN_IF_FAILED(database.remove(record.name.data()));
  }
  return database.add(std::move(made));
}

// Reads the values, and keeps them unless the record only marks the begin or the end.
GR_STATUS readValues(BlockBytes& bytes, const Record& record, GRIMetadataDatabase& database) {
  GRArray<gr_uint8> numbers;
  GRArray<char> texts;
  GRArray<const char*> pointers;
  const void* values = nullptr;
  if (record.type == GRI_METADATA_DATATYPE_ASCII) {
    GR_RETURN_IF_FAILED(readTexts(bytes, record, texts, pointers));
    values = static_cast<const void*>(pointers.data());
  } else {
    GR_RETURN_IF_FAILED(readNumbers(bytes, record, numbers));
    values = numbers.data();
  }
  if (record.isNamed(GRI_TAG_IMAGE_SOM) || record.isNamed(GRI_TAG_IMAGE_EOM)) return GR_STATUS_OK;
  return addRecord(database, record, values);
}

GR_STATUS readRecords(BlockBytes& bytes, GRIMetadataDatabase& database) {
  for (;;) {
    gr_uint32 unused = 0;
    Record record;
    GR_RETURN_IF_FAILED(bytes.readNumber(unused));
    GR_RETURN_IF_FAILED(readName(bytes, record));
    if (record.name[0] == '\0') return GR_STATUS_OK;
    GR_RETURN_IF_FAILED(readShape(bytes, record));
    GR_RETURN_IF_FAILED(readValues(bytes, record, database));
    if (record.isNamed(GRI_TAG_IMAGE_EOM)) return GR_STATUS_OK;
  }
}

}  // namespace

GR_STATUS GRIMetadataClassicalReader::read() {
  BlockBytes bytes(m_stream, m_length);
  gr_int16 major = 0;
  gr_int16 minor = 0;
  GR_RETURN_IF_FAILED(bytes.readNumber(major));
  GR_RETURN_IF_FAILED(bytes.readNumber(minor));
  if (major >= FIRST_UNKNOWN_MAJOR) return GR_STATUS_OK;
  const GR_STATUS status = readRecords(bytes, m_database);
  m_database.closeGaps();
  return status;
}
