#include "gr_lib_utils/include/gr_statusData.h"

#include <cstring>
#include <memory>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

enum class RecordType { STATUS = 2, UINT32 = 3, INT32 = 4, DOUBLE = 5, STRING = 6, FILE_SPEC = 7 };

/// One value of a frame; the records of a frame form a list in the order of the pushes.
struct Record {
  explicit Record(RecordType recordType) : type(recordType) {}
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  virtual ~Record() = default;

  const RecordType type;
  std::unique_ptr<Record> next;
};

template <typename T, RecordType TYPE>
struct RecordOf : Record {
  static constexpr RecordType RECORD_TYPE = TYPE;
  RecordOf() : Record(TYPE) {}
  T value{};
};

using RecordStatus = RecordOf<GR_STATUS, RecordType::STATUS>;
using RecordUint32 = RecordOf<gr_uint32, RecordType::UINT32>;
using RecordInt32 = RecordOf<gr_int32, RecordType::INT32>;
using RecordDouble = RecordOf<double, RecordType::DOUBLE>;
using RecordString = RecordOf<GRArray<char>, RecordType::STRING>;
using RecordFileSpec = RecordOf<GRFileSpec, RecordType::FILE_SPEC>;

}  // namespace

/// The values of one failure. (The list is short and freed from its front, so its destructor
/// doesn't nest deeply.)
struct GRUtilStatusFrame {
  GRUtilStatusFrame() = default;
  GRUtilStatusFrame(const GRUtilStatusFrame&) = delete;
  GRUtilStatusFrame& operator=(const GRUtilStatusFrame&) = delete;
  ~GRUtilStatusFrame() {
    while (m_recordList != nullptr) m_recordList = std::move(m_recordList->next);
  }

  void append(std::unique_ptr<Record> record) {
    Record* const added = record.get();
    (m_last == nullptr ? m_recordList : m_last->next) = std::move(record);
    m_last = added;
  }

  std::unique_ptr<Record> m_recordList;
  Record* m_last = nullptr;
};

namespace {

/// At most one of the three frames is set at any time.
struct StatusData {
  std::unique_ptr<GRUtilStatusFrame> m_currentFrame;      // finished, waits to be read
  std::unique_ptr<GRUtilStatusFrame> m_currentPushFrame;  // being filled
  std::unique_ptr<GRUtilStatusFrame> m_currentPopFrame;   // being read
};

std::unique_ptr<StatusData>& global() {
  static std::unique_ptr<StatusData> data;
  return data;
}

template <typename T>
std::unique_ptr<T> makeOrThrow() {
  std::unique_ptr<T> object = gr_makeUnique<T>();
  if (object == nullptr) throw GRUtilException(GR_STATUS_NO_MEMORY);
  return object;
}

GRUtilStatusFrame* pushFrame() {
  StatusData* const data = global().get();
  return data == nullptr ? nullptr : data->m_currentPushFrame.get();
}

template <typename RecordClass, typename T>
void push(const T& value) {
  GRUtilStatusFrame* const frame = pushFrame();
  if (frame == nullptr) return;
  auto record = makeOrThrow<RecordClass>();
  record->value = value;
  frame->append(std::move(record));
}

GRUtilStatusFrame* popFrame() {
  StatusData* const data = global().get();
  return data == nullptr ? nullptr : data->m_currentPopFrame.get();
}

template <typename RecordClass, typename T>
GR_STATUS pop(T& value) {
  GRUtilStatusFrame* const frame = popFrame();
  if (frame == nullptr) return GR_STATUS_STATUS_DATA;
  Record* const record = frame->m_recordList.get();
  if (record == nullptr || record->type != RecordClass::RECORD_TYPE) {
    return GR_STATUS_STATUS_DATA_TYPE;
  }
  value = std::move(static_cast<RecordClass*>(record)->value);
  frame->m_recordList = std::move(record->next);
  if (frame->m_recordList == nullptr) frame->m_last = nullptr;
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS GRUtilStatusData::create() {
  if (global() != nullptr) return GR_STATUS_STATUS_DATA;
  global() = gr_makeUnique<StatusData>();
  return global() == nullptr ? GR_STATUS_NO_MEMORY : GR_STATUS_OK;
}

GR_STATUS GRUtilStatusData::destroy() {
  if (global() == nullptr) return GR_STATUS_STATUS_DATA;
  global().reset();
  return GR_STATUS_OK;
}

bool GRUtilStatusData::exists() { return global() != nullptr; }

void GRUtilStatusData::pushBegin(GR_STATUS status) {
  StatusData* const data = global().get();
  if (data == nullptr) return;
  data->m_currentFrame.reset();
  data->m_currentPopFrame.reset();
  data->m_currentPushFrame.reset();  // unfinished where memory ran out in a push
  auto frame = makeOrThrow<GRUtilStatusFrame>();
  auto record = makeOrThrow<RecordStatus>();
  record->value = status;
  frame->append(std::move(record));
  data->m_currentPushFrame = std::move(frame);
}

void GRUtilStatusData::pushUint32(gr_uint32 value) { push<RecordUint32>(value); }
void GRUtilStatusData::pushInt32(gr_int32 value) { push<RecordInt32>(value); }
void GRUtilStatusData::pushDouble(double value) { push<RecordDouble>(value); }
void GRUtilStatusData::pushFileSpec(const GRFileSpec& value) { push<RecordFileSpec>(value); }

void GRUtilStatusData::pushString(const char* value) {
  GRUtilStatusFrame* const frame = pushFrame();
  if (frame == nullptr) return;
  auto record = makeOrThrow<RecordString>();
  if (value != nullptr) {
    const size_t size = std::strlen(value) + 1;
    if (!GR_SUCCESS(record->value.allocate(size))) throw GRUtilException(GR_STATUS_NO_MEMORY);
    std::memcpy(record->value.data(), value, size);
  }
  frame->append(std::move(record));
}

void GRUtilStatusData::pushEnd() {
  StatusData* const data = global().get();
  if (data == nullptr) return;
  data->m_currentFrame = std::move(data->m_currentPushFrame);
}

GR_STATUS GRUtilStatusData::popStatus(GR_STATUS& status) {
  StatusData* const data = global().get();
  if (data == nullptr || data->m_currentFrame == nullptr) return GR_STATUS_STATUS_DATA;
  data->m_currentPopFrame = std::move(data->m_currentFrame);
  return pop<RecordStatus>(status);
}

GR_STATUS GRUtilStatusData::popUint32(gr_uint32& value) { return pop<RecordUint32>(value); }
GR_STATUS GRUtilStatusData::popInt32(gr_int32& value) { return pop<RecordInt32>(value); }
GR_STATUS GRUtilStatusData::popDouble(double& value) { return pop<RecordDouble>(value); }
GR_STATUS GRUtilStatusData::popString(GRArray<char>& value) { return pop<RecordString>(value); }
GR_STATUS GRUtilStatusData::popFileSpec(GRFileSpec& value) { return pop<RecordFileSpec>(value); }

GR_STATUS GRUtilStatusData::popEnd() {
  if (popFrame() == nullptr) return GR_STATUS_STATUS_DATA;
  global()->m_currentPopFrame.reset();
  return GR_STATUS_OK;
}
