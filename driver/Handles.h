// All handles that are alive. A handle is a number and no address: the place of its object in a
// table and how often that place has been used, so that a stale handle is known for what it is,
// even when its place has a new object.

#ifndef DRIVER_HANDLES_H
#define DRIVER_HANDLES_H

#include <memory>
#include <mutex>
#include <new>

#include "driver/Diagnostics.h"
#include "driver/Odbc.h"

class DriverObject
{
public:
  DriverObject() = default;
  virtual ~DriverObject() = default;
  DriverObject(const DriverObject&) = delete;
  DriverObject& operator=(const DriverObject&) = delete;

  // SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT.
  virtual SQLSMALLINT Kind() const = 0;
  // Held during every call on the object. Statements share the mutex of their connection.
  virtual std::mutex& Mutex() = 0;

  Diagnostics diagnostics;
  SQLHANDLE handle = SQL_NULL_HANDLE;
  // Set, with the mutex held, when the handle is freed: a thread that waited for the mutex then
  // finds nothing to work on.
  bool released = false;
};

// Descriptors have no object of their own: their handle is that of the statement and a role.
enum class DescriptorRole
{
  None,
  ApplicationRow,
  ApplicationParameter,
  ImplementationRow,
  ImplementationParameter
};

// Gives the object its handle.
void RegisterHandle(const std::shared_ptr<DriverObject>& object);
// Marks the object as released and forgets the handle.
void ReleaseHandle(DriverObject& object);
// Null for a null, stale or made-up handle, or one of another kind.
std::shared_ptr<DriverObject> FindHandle(SQLHANDLE handle, SQLSMALLINT kind);

SQLHANDLE DescriptorHandle(const DriverObject& statement, DescriptorRole role);
// The statement of a descriptor's handle and the role, or null.
std::shared_ptr<DriverObject> FindDescriptor(SQLHANDLE handle, DescriptorRole& role);

// Runs a call on an object with its mutex held. Nothing thrown leaves a call.
template <typename Object, typename Call>
SQLRETURN WithObject(const std::shared_ptr<DriverObject>& found, const Call& call)
{
  if (!found)
    return SQL_INVALID_HANDLE;
  const std::lock_guard<std::mutex> lock(found->Mutex());
  if (found->released)
    return SQL_INVALID_HANDLE;
  try {
    return call(static_cast<Object&>(*found));
  } catch (const std::bad_alloc&) {
    return found->diagnostics.FailOutOfMemory();
  }
}

// The same for a handle; the records of the call before are cleared.
template <typename Object, typename Call>
SQLRETURN WithHandle(SQLHANDLE handle, const Call& call)
{
  return WithObject<Object>(FindHandle(handle, Object::HandleKind), [&](Object& object) {
    object.diagnostics.Clear();
    return call(object);
  });
}

#endif
