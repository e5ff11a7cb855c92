pragma Singleton

import QtQml
import Murmeli.Localisation

QtObject {
    readonly property string language: Language.current

    function t(key: string, argument: var): string {
        return argument === undefined ? Language.text(language, key)
                                      : Language.text(language, key, String(argument));
    }
    // A text made in C++.
    function say(message: var): string {
        return Language.say(language, message);
    }
    function count(key: string, number: int): string {
        return Language.count(language, key, number);
    }
    function percent(percent: int): string {
        return Language.percent(language, percent);
    }
    function spokenDuration(seconds: real): string {
        return Language.spokenDuration(language, seconds);
    }
    function spokenPercent(percent: int): string {
        return Language.spokenPercent(language, percent);
    }
}
