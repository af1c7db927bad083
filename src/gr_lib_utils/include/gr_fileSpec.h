/// @file
/// GRFileSpec, a path held by value.
#pragma once

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// The one form in which a path travels through the system. It keeps the path as 8-bit text, by
/// convention UTF-8, and gives it back unchanged, also where it isn't valid UTF-8.
///
/// A path may be put together from pieces, which are joined with a backslash on every system;
/// GRFileUtils, which is the only user of a path towards the system, finds the file that is meant.
///
/// A const path may be read from several threads at once. Every operation that makes text throws
/// GRUtilException(GR_STATUS_NO_MEMORY) when memory runs out, and the path is then as it was.
class GRFileSpec {
 public:
  GRFileSpec() = default;  ///< the empty specification, which names nothing
  ~GRFileSpec() = default;
  GRFileSpec(const GRFileSpec& other);
  GRFileSpec& operator=(const GRFileSpec& other);
  GRFileSpec(GRFileSpec&& other) noexcept = default;
  GRFileSpec& operator=(GRFileSpec&& other) noexcept = default;

  /// A path of up to three pieces, of which only the first must not be null. Before each further
  /// piece all "/" and "\" at the end of what there is are cut and one "\" is added, so "a/" and
  /// "b" make "a\b".
  explicit GRFileSpec(const char* p1, const char* p2 = nullptr, const char* p3 = nullptr);
  /// The same from wide text: code points or UTF-16 units, surrogate pairs are put together.
  explicit GRFileSpec(const wchar_t* p1, const wchar_t* p2 = nullptr, const wchar_t* p3 = nullptr);
  /// The same with a path as its first piece, which must not be the empty specification.
  GRFileSpec(const GRFileSpec& directory, const char* p2, const char* p3 = nullptr);

  /// Whether this is the empty specification. (A path of no characters isn't.)
  bool isEmpty() const { return m_path8.empty(); }

  /// The three forms of the path. The pointers stay valid until the path changes. For the empty
  /// specification, which has none, the text is empty.
  const char* utf8() const;
  const char* local() const;     ///< for 8-bit file calls: the same bytes as utf8()
  const char16_t* wide() const;  ///< UTF-16; U+FFFD stands for each byte that isn't UTF-8

  /// Whether the path is absolute in the way of drives and shares ("C:\x", "\\host\x"). This says
  /// nothing about a path of another system, and must not decide how a file is opened.
  bool isAbsolute() const;
  /// The directory: the text before the last separator ("/" or "\"), "." where there is none.
  GRFileSpec parent() const;
  /// The last piece, a pointer into utf8(). Separators at its end belong to it.
  const char* fileName() const;

  /// The text behind the last "." of the whole path, also where that is inside the name of a
  /// directory ("a.b/file" has the suffix "b/file"); empty when there is none.
  const char* suffix() const;
  /// Replaces the text behind the last "." of the whole path, or adds "." and `suffix` where
  /// there is none. Null counts as empty.
  void replaceSuffix(const char* suffix);
  /// Cuts the path from its last "."; with none nothing changes.
  void removeSuffix();

  /// Equal when both are the empty specification, or both are paths of the same bytes.
  bool operator==(const GRFileSpec& other) const;

 private:
  GRArray<char> m_path8;               // the path and its zero; without elements when empty
  mutable GRArray<char16_t> m_path16;  // made by wide() on its first use, under a lock
};
