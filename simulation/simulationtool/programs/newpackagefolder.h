#ifndef SIMULATIONTOOL_NEWPACKAGEFOLDER_H
#define SIMULATIONTOOL_NEWPACKAGEFOLDER_H

#include <QString>

#include <memory>

class QTemporaryDir;

namespace SimulationTool {

/// A signal package folder that gets its name only when it is whole: the files are written
/// into a hidden folder beside it, which disappears with this object unless commit()
/// renames it.
class NewPackageFolder
{
public:
    /// `a_bReplace`: an existing package may be replaced.
    NewPackageFolder(const QString& a_sFolder, bool a_bReplace);
    ~NewPackageFolder();
    NewPackageFolder(const NewPackageFolder&) = delete;
    NewPackageFolder& operator=(const NewPackageFolder&) = delete;

    /// Makes the hidden folder. Returns false with errorString() when the name is taken by
    /// something that may not be replaced, or the parent folder cannot be written. Only a
    /// folder that holds a package and nothing else is ever replaced.
    [[nodiscard]] bool open();
    /// Where to write the files; valid after open().
    [[nodiscard]] QString path() const;
    /// Gives the folder its name. On failure returns false with errorString(), and a former
    /// package stays as it was.
    [[nodiscard]] bool commit();

    /// What is wrong and what to do; without the name of the folder.
    [[nodiscard]] QString errorString() const { return m_sError; }

private:
    bool fail(const QString& a_sReason);
    [[nodiscard]] QString takenError() const;

    QString m_sFolder; ///< absolute
    bool m_bReplace;
    std::unique_ptr<QTemporaryDir> m_hidden;
    QString m_sError;
};

} // namespace SimulationTool

#endif
