#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/core/Errors.h"

namespace {

struct ErrorText {
    DWORD code;
    std::string_view text;
};

constexpr DWORD Status(HRESULT status) { return static_cast<DWORD>(status); }

constexpr ErrorText kTexts[] = {
    {ERROR_SUCCESS, "Nothing went wrong.\r\n"},
    {ERROR_INVALID_FUNCTION, "The system does not offer this function here.\r\n"},
    {ERROR_FILE_NOT_FOUND, "There is no such file or entry.\r\n"},
    {ERROR_PATH_NOT_FOUND, "A folder on the path does not exist.\r\n"},
    {ERROR_TOO_MANY_OPEN_FILES, "Too many files are open.\r\n"},
    {ERROR_ACCESS_DENIED, "Access was denied.\r\n"},
    {ERROR_INVALID_HANDLE, "The handle is not valid.\r\n"},
    {ERROR_NOT_ENOUGH_MEMORY, "There is too little memory for this request.\r\n"},
    {ERROR_BAD_FORMAT, "The data does not have the form that was expected.\r\n"},
    {ERROR_INVALID_DATA, "The data is not valid.\r\n"},
    {ERROR_OUTOFMEMORY, "Memory has run out.\r\n"},
    {ERROR_NO_MORE_FILES, "No further file matches.\r\n"},
    {ERROR_WRITE_FAULT, "Writing to the device failed.\r\n"},
    {ERROR_READ_FAULT, "Reading from the device failed.\r\n"},
    {ERROR_SHARING_VIOLATION, "Another process is using the file.\r\n"},
    {ERROR_LOCK_VIOLATION, "Another handle has locked a part of the file.\r\n"},
    {ERROR_HANDLE_EOF, "The end of the file was reached.\r\n"},
    {ERROR_FILE_EXISTS, "A file of that name exists.\r\n"},
    {ERROR_INVALID_PARAMETER, "An argument is not valid.\r\n"},
    {ERROR_DISK_FULL, "The disk is full.\r\n"},
    {ERROR_INSUFFICIENT_BUFFER, "The buffer is too small for the result.\r\n"},
    {ERROR_INVALID_NAME, "The name is not well formed.\r\n"},
    {ERROR_NEGATIVE_SEEK, "The position would lie before the start of the file.\r\n"},
    {ERROR_MOD_NOT_FOUND, "The module, or another one that it needs, was not found.\r\n"},
    {ERROR_PROC_NOT_FOUND, "The function was not found in the module.\r\n"},
    {ERROR_NOT_LOCKED, "That part of the file was not locked.\r\n"},
    {ERROR_BAD_PATHNAME, "The path is not well formed.\r\n"},
    {ERROR_ALREADY_EXISTS, "An object of that name exists already.\r\n"},
    {ERROR_BAD_EXE_FORMAT, "The file is no program or module for this system.\r\n"},
    {ERROR_FILENAME_EXCED_RANGE, "The file name is too long.\r\n"},
    {ERROR_FILE_TOO_LARGE, "The file is larger than allowed.\r\n"},
    {ERROR_NO_DATA, "The other end of the pipe is closed.\r\n"},
    {ERROR_MORE_DATA, "There is more data than the buffer holds.\r\n"},
    {ERROR_NO_MORE_ITEMS, "There are no further items.\r\n"},
    {ERROR_DIRECTORY, "The name is not that of a folder.\r\n"},
    {ERROR_NOT_OWNER, "The mutex belongs to another thread.\r\n"},
    {ERROR_MR_MID_NOT_FOUND, "There is no text for this code.\r\n"},
    {ERROR_INVALID_FLAGS, "The flags are not valid.\r\n"},
    {ERROR_BADDB, "The registry file is damaged.\r\n"},
    {ERROR_KEY_DELETED, "The registry key has been deleted.\r\n"},
    {ERROR_NO_UNICODE_TRANSLATION, "The text holds what its code page does not know.\r\n"},
    {ERROR_DLL_INIT_FAILED, "The module refused to start.\r\n"},
    {ERROR_UNKNOWN_REVISION, "The revision is not known.\r\n"},
    {ERROR_TIMEOUT, "The time for the wait is over.\r\n"},

    {Status(E_NOTIMPL), "This is not implemented.\r\n"},
    {Status(E_NOINTERFACE), "The object does not have this interface.\r\n"},
    {Status(E_POINTER), "A pointer is not valid.\r\n"},
    {Status(E_ABORT), "The operation was ended early.\r\n"},
    {Status(E_FAIL), "The operation failed for a reason that was not given.\r\n"},
    {Status(E_UNEXPECTED), "The call came at a time when it makes no sense.\r\n"},
    {Status(DISP_E_UNKNOWNINTERFACE), "The interface is not known.\r\n"},
    {Status(DISP_E_MEMBERNOTFOUND), "The object has no such member.\r\n"},
    {Status(DISP_E_PARAMNOTFOUND), "The member has no such parameter.\r\n"},
    {Status(DISP_E_TYPEMISMATCH), "An argument has the wrong type.\r\n"},
    {Status(DISP_E_UNKNOWNNAME), "The name is not known.\r\n"},
    {Status(DISP_E_NONAMEDARGS), "Named arguments are not accepted.\r\n"},
    {Status(DISP_E_BADVARTYPE), "The type of a variant is not valid.\r\n"},
    {Status(DISP_E_EXCEPTION), "The member reported an error of its own.\r\n"},
    {Status(DISP_E_OVERFLOW), "A value does not fit its type.\r\n"},
    {Status(DISP_E_BADINDEX), "The index is out of range.\r\n"},
    {Status(DISP_E_BADPARAMCOUNT), "The number of arguments is wrong.\r\n"},
    {Status(TYPE_E_UNSUPFORMAT), "The type library has a form that is not supported.\r\n"},
    {Status(TYPE_E_REGISTRYACCESS), "The registry refused the type library's entries.\r\n"},
    {Status(TYPE_E_LIBNOTREGISTERED), "The type library is not registered.\r\n"},
    {Status(TYPE_E_INVALIDSTATE), "The type information is not in a state for this.\r\n"},
    {Status(TYPE_E_ELEMENTNOTFOUND), "The type library has no such element.\r\n"},
    {Status(TYPE_E_UNKNOWNLCID), "The type library does not know the language.\r\n"},
    {Status(TYPE_E_BADMODULEKIND), "The type is of the wrong kind for this.\r\n"},
    {Status(TYPE_E_CANTLOADLIBRARY), "The type library could not be loaded.\r\n"},
    {Status(CLASS_E_NOAGGREGATION), "The class cannot be made part of another object.\r\n"},
    {Status(CLASS_E_CLASSNOTAVAILABLE), "The module does not offer the class.\r\n"},
    {Status(REGDB_E_CLASSNOTREG), "The class is not registered.\r\n"},
    {Status(CO_E_NOTINITIALIZED), "COM was not initialised on this thread.\r\n"},
    {Status(CO_E_CLASSSTRING), "The text names no class.\r\n"},
    {Status(CO_E_ERRORINDLL), "The module is no server of classes.\r\n"},
};

std::string_view TextOf(DWORD code) {
    // A status that carries a system error code has that code's text.
    if ((code & 0xFFFF0000U) == 0x80070000U) code &= 0xFFFFU;
    const auto* entry = std::find_if(std::begin(kTexts), std::end(kTexts),
                                     [code](const ErrorText& candidate) { return candidate.code == code; });
    return entry == std::end(kTexts) ? std::string_view() : entry->text;
}

DWORD FailWith(DWORD code) {
    SetLastError(code);
    return 0;
}

}  // namespace

DWORD FormatMessageA(DWORD flags, LPCVOID, DWORD messageId, DWORD, LPSTR buffer, DWORD size, void*) {
    constexpr DWORD known =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    if ((flags & ~known) != 0 || (flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || !buffer) {
        return FailWith(ERROR_INVALID_PARAMETER);
    }
    const bool allocate = (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
    char** const place = reinterpret_cast<char**>(buffer);
    if (allocate) *place = nullptr;

    const std::string_view text = TextOf(messageId);
    if (text.empty()) return FailWith(ERROR_MR_MID_NOT_FOUND);
    char* destination = buffer;
    if (allocate) {
        // The size is then the least room that the caller wants.
        destination = static_cast<char*>(std::malloc(std::max<std::size_t>(text.size() + 1, size)));
        if (!destination) return FailWith(ERROR_NOT_ENOUGH_MEMORY);
        *place = destination;
    } else if (size <= text.size()) {
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(destination, text.data(), text.size());
    destination[text.size()] = '\0';
    return static_cast<DWORD>(text.size());
}

HLOCAL LocalFree(HLOCAL memory) {
    std::free(memory);
    return nullptr;
}
