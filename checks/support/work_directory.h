#ifndef AT_CHECKS_SUPPORT_WORK_DIRECTORY_H
#define AT_CHECKS_SUPPORT_WORK_DIRECTORY_H

#include <string>

// An empty directory that is the working directory for as long as the object lives, for files that the daemon
// names by a relative path. Everything below it is removed at the end.
class WorkDirectory {
  public:
    WorkDirectory();
    ~WorkDirectory();
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    // Writes a file below it, with the directories of its path.
    void Write(const std::string& path, const std::string& content) const;
    const std::string& path() const { return path_; }

  private:
    std::string before_;
    std::string path_;
};

#endif
