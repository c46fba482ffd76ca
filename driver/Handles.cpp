#include "driver/Handles.h"

#include <cstdint>
#include <vector>

namespace {

// A handle is made of the use count of its place (upper half), the place counted from 1, and the
// descriptor's role in the lowest bits.
constexpr unsigned RoleBits = 3;
constexpr uintptr_t RoleMask = (1U << RoleBits) - 1;
constexpr unsigned UseShift = 32;

struct Place
{
  std::shared_ptr<DriverObject> object;
  uint32_t use = 0;
};

struct HandleTable
{
  std::mutex mutex;
  std::vector<Place> places;
  std::vector<uint32_t> freePlaces;
};

// Never destroyed: a program may still call while its static objects go.
HandleTable& Table()
{
  static HandleTable* const table = new HandleTable;
  return *table;
}

uintptr_t Number(SQLHANDLE handle)
{
  return reinterpret_cast<uintptr_t>(handle);
}

SQLHANDLE MakeHandle(uint32_t index, uint32_t use)
{
  const uintptr_t number = (uintptr_t{use} << UseShift) | ((uintptr_t{index} + 1) << RoleBits);
  return reinterpret_cast<SQLHANDLE>(number);  // NOLINT(performance-no-int-to-ptr): never followed
}

// The place of a handle, or null. The table's mutex is held.
Place* FindPlace(HandleTable& table, uintptr_t number)
{
  const uintptr_t place = (number & 0xffffffffU) >> RoleBits;
  if (place == 0 || place > table.places.size())
    return nullptr;
  Place& found = table.places[place - 1];
  return found.object && found.use == (number >> UseShift) ? &found : nullptr;
}

}  // namespace

void RegisterHandle(const std::shared_ptr<DriverObject>& object)
{
  HandleTable& table = Table();
  const std::lock_guard<std::mutex> lock(table.mutex);
  if (table.freePlaces.empty()) {
    table.places.emplace_back();
    // Room on the free list for every place, so that releasing a handle never needs memory.
    table.freePlaces.reserve(table.places.capacity());
    table.freePlaces.push_back(static_cast<uint32_t>(table.places.size() - 1));
  }
  const uint32_t index = table.freePlaces.back();
  table.freePlaces.pop_back();
  Place& place = table.places[index];
  ++place.use;
  place.object = object;
  object->handle = MakeHandle(index, place.use);
}

void ReleaseHandle(DriverObject& object)
{
  object.released = true;
  std::shared_ptr<DriverObject> last;
  HandleTable& table = Table();
  const std::lock_guard<std::mutex> lock(table.mutex);
  Place* const place = FindPlace(table, Number(object.handle));
  if (place == nullptr)
    return;
  // Taken out here and dropped behind the lock: destroying may take time.
  last.swap(place->object);
  table.freePlaces.push_back(static_cast<uint32_t>(place - table.places.data()));
}

std::shared_ptr<DriverObject> FindHandle(SQLHANDLE handle, SQLSMALLINT kind)
{
  const uintptr_t number = Number(handle);
  if ((number & RoleMask) != 0)
    return nullptr;
  HandleTable& table = Table();
  const std::lock_guard<std::mutex> lock(table.mutex);
  const Place* const place = FindPlace(table, number);
  return place != nullptr && place->object->Kind() == kind ? place->object : nullptr;
}

SQLHANDLE DescriptorHandle(const DriverObject& statement, DescriptorRole role)
{
  const uintptr_t number = Number(statement.handle) | static_cast<uintptr_t>(role);
  return reinterpret_cast<SQLHANDLE>(number);  // NOLINT(performance-no-int-to-ptr): never followed
}

std::shared_ptr<DriverObject> FindDescriptor(SQLHANDLE handle, DescriptorRole& role)
{
  const uintptr_t bits = Number(handle) & RoleMask;
  if (bits == 0 || bits > static_cast<uintptr_t>(DescriptorRole::ImplementationParameter))
    return nullptr;
  role = static_cast<DescriptorRole>(bits);
  const uintptr_t number = Number(handle) & ~RoleMask;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): never followed
  return FindHandle(reinterpret_cast<SQLHANDLE>(number), SQL_HANDLE_STMT);
}
