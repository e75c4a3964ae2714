#include "app/modGuard.h"

#include <new>
#include <stdexcept>

#include "app/modFrontEnd.h"
#include "app/modUndo.h"

std::string WordsOf(const std::exception& exception)
{
    const bool memory = dynamic_cast<const std::bad_alloc*>(&exception) != nullptr ||
                        dynamic_cast<const std::length_error*>(&exception) != nullptr;
    return memory ? "There is not enough memory." : exception.what();
}

bool RunGuarded(const std::string& lead, const std::function<void()>& operation)
{
    std::string words;
    try {
        operation();
        return true;
    } catch (const std::exception& exception) {
        RollBackStep();
        words = WordsOf(exception);
    }
    ShowMessage(BoxIcon::Stop, lead + "\n" + words);
    return false;
}

bool SaveGuarded(const std::string& operation, const std::string& path, const std::string& guard, const PartMaker& make)
{
    SaveRest rest;
    std::string error;
    bool good = false;
    try {
        good = SaveWhole(path, guard, make, &rest, &error);
    } catch (const std::exception& exception) {
        error = WordsOf(exception);
    }
    if (!good) {
        const std::string kept = rest.Torn ? "\nThe old content is kept in \"" + rest.Guard + "\"." : std::string();
        ShowMessage(BoxIcon::Stop, "Runtime error in " + operation + "\n" + error + kept);
    }
    if (!rest.Guard.empty() && !rest.Torn) {
        ShowMessage(BoxIcon::Warning, "Can't delete the safety copy \"" + rest.Guard + "\".\n" + rest.Why);
    }
    return good;
}
