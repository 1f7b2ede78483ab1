#pragma once

namespace quillon::inspection {

// The active-document record: six strings in this order.
inline constexpr int kRecordHfsPath = 0;
inline constexpr int kRecordPosixPath = 1;
inline constexpr int kRecordFileName = 2;
inline constexpr int kRecordPageCount = 3;
inline constexpr int kRecordLinkCount = 4;
inline constexpr int kRecordInDesignVersion = 5;
inline constexpr int kRecordItemCount = 6;

} // namespace quillon::inspection
