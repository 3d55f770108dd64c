// Project file sets and the project's object registry through which actions
// find them, plus TFileSetBaseAction, the base of actions that work on one
// named file set. The host owns every project object; pointers stay valid
// for the whole build.
#pragma once

#include <string>

#include "frame/ZTAction.h"

namespace zt::frame {

// The kind under which the project registers its file sets.
inline constexpr const char* ZT_FILESET_OBJECT_KIND = "FileSetObject";

// A named set of files evaluated by the host from base + include/exclude
// patterns.
class IZTFileSet {
 public:
  virtual ~IZTFileSet() = default;
  // Re-evaluates the patterns; Context is the action whose log takes the
  // host's messages about it.
  virtual void Refresh(TZTAction& Context) = 0;
  // The files (full paths), each followed by Separator ("\r\n": one a line).
  virtual std::string GetFilesText(const std::string& Separator) = 0;
  virtual int GetFileCount() = 0;
  virtual std::string GetFile(int Index) = 0;  // 0-based
  // The directory the set's patterns are relative to, as an absolute path
  // without a trailing delimiter: every file of the set lies below it.
  virtual std::string GetBaseDir() = 0;
};

// One named object of the project (a file set, ...).
class IZTProjectObject {
 public:
  virtual ~IZTProjectObject() = default;
  virtual std::string GetName() const = 0;
  virtual std::string GetKind() const = 0;
  // The file-set interface of the object; null for objects of other kinds.
  virtual IZTFileSet* AsFileSet() { return nullptr; }
};

class IZTProjectObjectAPI {
 public:
  virtual ~IZTProjectObjectAPI() = default;
  // The object named Name (case-insensitive) of kind Kind, or null.
  virtual IZTProjectObject* FindObject(const std::string& Name, const std::string& Kind) = 0;
};

// The project file set named Name, or null when there is none (or the host
// has no project objects).
inline IZTFileSet* FindFileSet(IZTProjectObjectAPI* Api, const std::string& Name) {
  if (!Api) return nullptr;
  IZTProjectObject* Obj = Api->FindObject(Name, ZT_FILESET_OBJECT_KIND);
  return Obj ? Obj->AsFileSet() : nullptr;
}

// Base of actions on one named project file set. Publishes nothing itself;
// descendants publish FileSetName.
class TFileSetBaseAction : public TCustomZTAction {
  ZT_DECLARE_CLASS(TFileSetBaseAction, TCustomZTAction)

 public:
  const std::string& GetFileSetName() const { return FileSetName_; }
  void SetFileSetName(const std::string& Name) { FileSetName_ = Name; }
  // The file set named by FileSetName, or null.
  IZTFileSet* GetFileSet() { return FindFileSet(GetProjectObjectAPI(), FileSetName_); }

 private:
  std::string FileSetName_;
};

inline ZT_IMPLEMENT_CLASS(TFileSetBaseAction, nullptr)

}  // namespace zt::frame
