// Windows scalar types, constants and error codes used by the portable layer.
// Values are Win32's own, so code written against the Win32 API reads unchanged.
#pragma once

#include <cstdint>

namespace zt::platform {

using DWORD = std::uint32_t;
using BOOL = std::int32_t;  // Win32 BOOL: 0 false, anything else true

// File attributes (FILE_ATTRIBUTE_* and Delphi's fa* names).
constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x02;
constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x04;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
// A symbolic link (Windows: any reparse point). Reported, never stored or set.
constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

constexpr int faReadOnly = 0x01;
constexpr int faHidden = 0x02;
constexpr int faSysFile = 0x04;
constexpr int faVolumeID = 0x08;
constexpr int faDirectory = 0x10;
constexpr int faArchive = 0x20;
constexpr int faNormal = 0x80;
constexpr int faAnyFile = 0x3F;
constexpr int faSymLink = 0x400;  // reported only; masks ignore it

// Win32's FILETIME as one number: 100-nanosecond intervals since
// 1601-01-01 UTC.
using TFileTime = std::int64_t;

// CopyFileEx flags, progress results and callback reasons.
constexpr DWORD COPY_FILE_FAIL_IF_EXISTS = 0x01;
constexpr DWORD PROGRESS_CONTINUE = 0;
constexpr DWORD PROGRESS_CANCEL = 1;
constexpr DWORD PROGRESS_STOP = 2;
constexpr DWORD PROGRESS_QUIET = 3;
constexpr DWORD CALLBACK_CHUNK_FINISHED = 0;
constexpr DWORD CALLBACK_STREAM_SWITCH = 1;

// MoveFileEx / MoveFileWithProgress flags.
constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x01;
constexpr DWORD MOVEFILE_COPY_ALLOWED = 0x02;
constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x08;

// Delphi FileOpen modes: access in the low nibble, sharing in the next.
constexpr int fmOpenRead = 0x0000;
constexpr int fmOpenWrite = 0x0001;
constexpr int fmOpenReadWrite = 0x0002;
constexpr int fmShareCompat = 0x0000;
constexpr int fmShareExclusive = 0x0010;
constexpr int fmShareDenyWrite = 0x0020;
constexpr int fmShareDenyRead = 0x0030;
constexpr int fmShareDenyNone = 0x0040;

// Windows error codes (winerror.h).
constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_INVALID_FUNCTION = 1;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_OUTOFMEMORY = 14;
constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
constexpr DWORD ERROR_NO_MORE_FILES = 18;
constexpr DWORD ERROR_WRITE_PROTECT = 19;
constexpr DWORD ERROR_NOT_READY = 21;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_LOCK_VIOLATION = 33;
constexpr DWORD ERROR_HANDLE_EOF = 38;
constexpr DWORD ERROR_HANDLE_DISK_FULL = 39;
constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_BROKEN_PIPE = 109;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
constexpr DWORD ERROR_BUSY = 170;
constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_DIRECTORY = 267;
constexpr DWORD ERROR_NOT_OWNER = 288;
constexpr DWORD ERROR_OPERATION_ABORTED = 995;
constexpr DWORD ERROR_NO_ASSOCIATION = 1155;
constexpr DWORD ERROR_CANCELLED = 1223;
constexpr DWORD ERROR_REQUEST_ABORTED = 1235;
constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
constexpr DWORD ERROR_PRIVILEGE_NOT_HELD = 1314;
constexpr DWORD ERROR_INVALID_DATA = 13;
constexpr DWORD ERROR_SEEK = 25;
constexpr DWORD ERROR_READ_FAULT = 30;
constexpr DWORD ERROR_WRITE_FAULT = 29;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_CANT_RESOLVE_FILENAME = 1921;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_BADDB = 1009;
constexpr DWORD ERROR_BADKEY = 1010;
constexpr DWORD ERROR_KEY_DELETED = 1018;

// Registry: key handles, the predefined root keys, access rights, value
// types and RegCreateKeyEx dispositions.
using HKEY = std::uintptr_t;
constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000;
constexpr HKEY HKEY_CURRENT_USER = 0x80000001;
constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002;
constexpr HKEY HKEY_USERS = 0x80000003;
constexpr HKEY HKEY_CURRENT_CONFIG = 0x80000005;

constexpr DWORD KEY_QUERY_VALUE = 0x0001;
constexpr DWORD KEY_SET_VALUE = 0x0002;
constexpr DWORD KEY_CREATE_SUB_KEY = 0x0004;
constexpr DWORD KEY_ENUMERATE_SUB_KEYS = 0x0008;
constexpr DWORD KEY_READ = 0x20019;
constexpr DWORD KEY_WRITE = 0x20006;
constexpr DWORD KEY_ALL_ACCESS = 0xF003F;

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

}  // namespace zt::platform
