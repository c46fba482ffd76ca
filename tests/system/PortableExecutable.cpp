#include "tests/system/PortableExecutable.h"

#include "sandbox/common/SandboxFiles.h"

#include <delayimp.h>
#include <stddef.h>
#include <string.h>

template <typename Record>
Record PortableExecutable::RecordAt(size_t offset) const
{
  Record record = {};
  if (offset <= bytes.size() && sizeof record <= bytes.size() - offset) {
    memcpy(&record, bytes.data() + offset, sizeof record);
  }
  return record;
}

template <typename Record>
std::vector<Record> PortableExecutable::RecordsOfTable(int entry) const
{
  const IMAGE_DATA_DIRECTORY& table = headers.OptionalHeader.DataDirectory[entry];
  std::vector<Record> records;
  for (size_t i = 0; table.VirtualAddress != 0 && (i + 1) * sizeof(Record) <= table.Size; ++i) {
    const Record zeros = {};
    const Record record = RecordAt<Record>(FileOffset(table.VirtualAddress) + i * sizeof(Record));
    if (memcmp(&record, &zeros, sizeof record) == 0) {
      break;
    }
    records.push_back(record);
  }
  return records;
}

PortableExecutable::PortableExecutable(const std::wstring& path)
{
  if (!ReadWholeFile(path, bytes)) {
    return;
  }
  const IMAGE_DOS_HEADER dosHeader = RecordAt<IMAGE_DOS_HEADER>(0);
  const size_t offset = static_cast<size_t>(dosHeader.e_lfanew);
  headers = RecordAt<IMAGE_NT_HEADERS64>(offset);
  if (dosHeader.e_magic != IMAGE_DOS_SIGNATURE || headers.Signature != IMAGE_NT_SIGNATURE) {
    return;
  }
  const size_t first = offset + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                       headers.FileHeader.SizeOfOptionalHeader;
  whole = true;
  for (size_t i = 0; i < headers.FileHeader.NumberOfSections; ++i) {
    sections.push_back(RecordAt<IMAGE_SECTION_HEADER>(first + i * sizeof(IMAGE_SECTION_HEADER)));
    whole = whole && size_t{sections.back().PointerToRawData} + sections.back().SizeOfRawData <=
                         bytes.size();
  }
}

size_t PortableExecutable::FileOffset(DWORD address) const
{
  for (const IMAGE_SECTION_HEADER& section : sections) {
    if (address >= section.VirtualAddress &&
        address - section.VirtualAddress < section.SizeOfRawData) {
      return size_t{address} - section.VirtualAddress + section.PointerToRawData;
    }
  }
  return bytes.size();
}

std::string PortableExecutable::TextAt(DWORD address) const
{
  const size_t offset = FileOffset(address);
  return bytes.substr(offset, bytes.find('\0', offset) - offset);
}

DWORD PortableExecutable::TableSize(int entry) const
{
  return headers.OptionalHeader.DataDirectory[entry].Size;
}

std::vector<std::string> PortableExecutable::Imports() const
{
  std::vector<std::string> names;
  for (const auto& import : RecordsOfTable<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT)) {
    names.push_back(TextAt(import.Name));
  }
  return names;
}

std::vector<DWORD> PortableExecutable::TimeStamps() const
{
  std::vector<DWORD> stamps;
  const auto note = [&stamps](DWORD stamp) {
    if (stamp != 0) {
      stamps.push_back(stamp);
    }
  };
  note(headers.FileHeader.TimeDateStamp);
  for (const auto& table : RecordsOfTable<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT)) {
    note(table.TimeDateStamp);
  }
  for (const auto& table : RecordsOfTable<IMAGE_DEBUG_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_DEBUG)) {
    note(table.TimeDateStamp);
  }
  // The first record of the resources is their root folder.
  const auto resources = RecordsOfTable<IMAGE_RESOURCE_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_RESOURCE);
  if (!resources.empty()) {
    note(resources.front().TimeDateStamp);
  }
  return stamps;
}
