<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>AuxParCheckBox</name>
    <message>
        <source>%1: not used for filtering</source>
        <translation>%1: не используется при фильтрации</translation>
    </message>
</context>
<context>
    <name>BottomWidget</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>Select event to see details.</source>
        <translation>Выберите событие, чтобы увидеть подробности.</translation>
    </message>
    <message>
        <source>Event parameter</source>
        <translation>Параметр события</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Значение</translation>
    </message>
    <message>
        <source>Filter name</source>
        <translation>Название фильтра</translation>
    </message>
    <message>
        <source>Filter value</source>
        <translation>Значение фильтра</translation>
    </message>
    <message>
        <source>From</source>
        <translation>С</translation>
    </message>
    <message>
        <source>To</source>
        <translation>По</translation>
    </message>
    <message>
        <source>Message ID</source>
        <translation>Идентификатор сообщения</translation>
    </message>
    <message>
        <source>Event type</source>
        <translation>Тип события</translation>
    </message>
    <message>
        <source>Custom events</source>
        <translation>Пользовательские события</translation>
    </message>
    <message>
        <source>Event type doesn&apos;t contain</source>
        <translation>Тип события не содержит</translation>
    </message>
    <message>
        <source>Event name contains text</source>
        <translation>Название события содержит текст</translation>
    </message>
    <message>
        <source>Event name doesn&apos;t contain</source>
        <translation>Название события не содержит</translation>
    </message>
    <message>
        <source>Priorities</source>
        <translation>Приоритеты</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>%1 (case sensitive, only whole words)</source>
        <comment>searched keyword</comment>
        <translation>%1 (с учётом регистра, только слова целиком)</translation>
    </message>
    <message>
        <source>%1 (case sensitive)</source>
        <comment>searched keyword</comment>
        <translation>%1 (с учётом регистра)</translation>
    </message>
    <message>
        <source>%1 (only whole words)</source>
        <comment>searched keyword</comment>
        <translation>%1 (только слова целиком)</translation>
    </message>
    <message>
        <source>Event details</source>
        <translation>Подробности события</translation>
    </message>
    <message>
        <source>Applied filters</source>
        <translation>Применённые фильтры</translation>
    </message>
</context>
<context>
    <name>ColumnChooser</name>
    <message>
        <source>Show columns</source>
        <translation>Показывать столбцы</translation>
    </message>
</context>
<context>
    <name>ComboBoxDelegate</name>
    <message>
        <source>Not selected</source>
        <translation>Не выбрано</translation>
    </message>
</context>
<context>
    <name>ConfigHandler</name>
    <message>
        <source>The settings could not be written in full to a temporary file.</source>
        <translation>Не удалось полностью записать настройки во временный файл.</translation>
    </message>
</context>
<context>
    <name>DetailsWindow</name>
    <message>
        <source>Event details</source>
        <translation>Подробности события</translation>
    </message>
    <message>
        <source>Event parameter</source>
        <translation>Параметр события</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Значение</translation>
    </message>
    <message>
        <source>Previous message</source>
        <translation>Предыдущее сообщение</translation>
    </message>
    <message>
        <source>Next message</source>
        <translation>Следующее сообщение</translation>
    </message>
    <message>
        <source>Print message</source>
        <translation>Печать сообщения</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Double-click to read the whole value</source>
        <translation>Дважды щёлкните, чтобы прочитать значение целиком</translation>
    </message>
    <message>
        <source>EVENT DETAILS</source>
        <translation>ПОДРОБНОСТИ СОБЫТИЯ</translation>
    </message>
    <message>
        <source>The event could not be printed to %1.</source>
        <translation>Не удалось напечатать событие в %1.</translation>
    </message>
</context>
<context>
    <name>Dictionary</name>
    <message>
        <source>emergency</source>
        <translation>авария</translation>
    </message>
    <message>
        <source>alert</source>
        <translation>тревога</translation>
    </message>
    <message>
        <source>critical</source>
        <translation>критическая ошибка</translation>
    </message>
    <message>
        <source>error</source>
        <translation>ошибка</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>предупреждение</translation>
    </message>
    <message>
        <source>notice</source>
        <translation>уведомление</translation>
    </message>
    <message>
        <source>info</source>
        <translation>информация</translation>
    </message>
    <message>
        <source>debug</source>
        <translation>отладка</translation>
    </message>
    <message>
        <source>unrecognized</source>
        <translation>нераспознанный</translation>
    </message>
</context>
<context>
    <name>Event</name>
    <message>
        <source>Event name</source>
        <translation>Название события</translation>
    </message>
    <message>
        <source>Message ID</source>
        <translation>Идентификатор сообщения</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
    <message>
        <source>Event type</source>
        <translation>Тип события</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Приоритет</translation>
    </message>
</context>
<context>
    <name>EventsChoiceDialog</name>
    <message>
        <source>all events</source>
        <translation>все события</translation>
    </message>
    <message>
        <source>current page messages</source>
        <translation>сообщения текущей страницы</translation>
    </message>
    <message>
        <source>selected messages</source>
        <translation>выбранные сообщения</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
</context>
<context>
    <name>EventsDataCopier</name>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
    <message>
        <source>Severity</source>
        <translation>Важность</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Источник</translation>
    </message>
    <message>
        <source>Event name</source>
        <translation>Название события</translation>
    </message>
</context>
<context>
    <name>EventsModel</name>
    <message>
        <source>№</source>
        <translation>№</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
    <message>
        <source>Message ID</source>
        <translation>Идентификатор сообщения</translation>
    </message>
    <message>
        <source>Event type</source>
        <translation>Тип события</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Приоритет</translation>
    </message>
    <message>
        <source>Event name</source>
        <translation>Название события</translation>
    </message>
</context>
<context>
    <name>EventsPrinter</name>
    <message>
        <source>LOG REPORT</source>
        <translation>ОТЧЁТ ПО ЖУРНАЛУ</translation>
    </message>
    <message>
        <source>№</source>
        <translation>№</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Источник</translation>
    </message>
    <message>
        <source>Severity</source>
        <translation>Важность</translation>
    </message>
    <message>
        <source>Event name</source>
        <translation>Название события</translation>
    </message>
    <message>
        <source>Additional info</source>
        <translation>Дополнительные сведения</translation>
    </message>
</context>
<context>
    <name>ExportDialog</name>
    <message>
        <source>Export events</source>
        <translation>Экспорт событий</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспортировать</translation>
    </message>
</context>
<context>
    <name>FavoriteIdsEditor</name>
    <message>
        <source>Favorite message IDs</source>
        <translation>Избранные идентификаторы сообщений</translation>
    </message>
    <message>
        <source>Message ID</source>
        <translation>Идентификатор сообщения</translation>
    </message>
    <message>
        <source>Add to favorites</source>
        <translation>Добавить в избранное</translation>
    </message>
    <message>
        <source>Remove from favorites</source>
        <translation>Удалить из избранного</translation>
    </message>
    <message>
        <source>This ID is already in the favorites.</source>
        <translation>Этот идентификатор уже есть в избранном.</translation>
    </message>
</context>
<context>
    <name>FilterHandler</name>
    <message>
        <source>Save filter</source>
        <translation>Сохранить фильтр</translation>
    </message>
    <message>
        <source>Filter name</source>
        <translation>Название фильтра</translation>
    </message>
</context>
<context>
    <name>FilterWindow</name>
    <message>
        <source>Message filter</source>
        <translation>Фильтр сообщений</translation>
    </message>
    <message>
        <source>Saved filters:</source>
        <translation>Сохранённые фильтры:</translation>
    </message>
    <message>
        <source>Saved filters</source>
        <translation>Сохранённые фильтры</translation>
    </message>
    <message>
        <source>Save filter</source>
        <translation>Сохранить фильтр</translation>
    </message>
    <message>
        <source>Save filter as</source>
        <translation>Сохранить фильтр как</translation>
    </message>
    <message>
        <source>Delete filter</source>
        <translation>Удалить фильтр</translation>
    </message>
    <message>
        <source>Main parameters</source>
        <translation>Основные параметры</translation>
    </message>
    <message>
        <source>Time period</source>
        <translation>Период времени</translation>
    </message>
    <message>
        <source>From</source>
        <translation>С</translation>
    </message>
    <message>
        <source>dd.MM.yyyy HH:mm</source>
        <translation>dd.MM.yyyy HH:mm</translation>
    </message>
    <message>
        <source>To</source>
        <translation>По</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Сообщение</translation>
    </message>
    <message>
        <source>Message ID</source>
        <translation>Идентификатор сообщения</translation>
    </message>
    <message>
        <source>Event name contains text</source>
        <translation>Название события содержит текст</translation>
    </message>
    <message>
        <source>Event name doesn&apos;t contain</source>
        <translation>Название события не содержит</translation>
    </message>
    <message>
        <source>Message sources</source>
        <translation>Источники сообщений</translation>
    </message>
    <message>
        <source>Keyword search</source>
        <translation>Поиск по ключевым словам</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>keyword search...</source>
        <translation>поиск по ключевым словам...</translation>
    </message>
    <message>
        <source>Classification</source>
        <translation>Классификация</translation>
    </message>
    <message>
        <source>Event type</source>
        <translation>Тип события</translation>
    </message>
    <message>
        <source>Message priority</source>
        <translation>Приоритет сообщения</translation>
    </message>
    <message>
        <source>Additional parameters</source>
        <translation>Дополнительные параметры</translation>
    </message>
    <message>
        <source>Find parameter...</source>
        <translation>Найти параметр...</translation>
    </message>
    <message>
        <source>Event parameters</source>
        <translation>Параметры события</translation>
    </message>
    <message>
        <source>Custom parameters</source>
        <translation>Пользовательские параметры</translation>
    </message>
    <message>
        <source>Go to the keyword search</source>
        <translation>Перейти к поиску по ключевым словам</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Выбрать все</translation>
    </message>
    <message>
        <source>Custom events</source>
        <translation>Пользовательские события</translation>
    </message>
    <message>
        <source>Event types</source>
        <translation>Типы событий</translation>
    </message>
    <message>
        <source>No filters selected.</source>
        <translation>Не выбран ни один фильтр.</translation>
    </message>
    <message>
        <source>Start time is greater than current.</source>
        <translation>Начальное время позже текущего.</translation>
    </message>
    <message>
        <source>Start time is greater than end time.</source>
        <translation>Начальное время позже конечного.</translation>
    </message>
    <message>
        <source>Message ID is empty</source>
        <translation>Не указан идентификатор сообщения</translation>
    </message>
    <message>
        <source>No event types selected.</source>
        <translation>Не выбран ни один тип событий.</translation>
    </message>
    <message>
        <source>No message priorities selected.</source>
        <translation>Не выбран ни один приоритет сообщений.</translation>
    </message>
    <message>
        <source>The search field is empty</source>
        <translation>Поле поиска не заполнено</translation>
    </message>
    <message>
        <source>Filter saving</source>
        <translation>Сохранение фильтра</translation>
    </message>
    <message>
        <source>Filter with this name already exists. Do you want to rewrite selected filter?</source>
        <translation>Фильтр с таким названием уже существует. Перезаписать выбранный фильтр?</translation>
    </message>
    <message>
        <source>Do you want to rewrite selected filter?</source>
        <translation>Перезаписать выбранный фильтр?</translation>
    </message>
    <message>
        <source>Filter deleting</source>
        <translation>Удаление фильтра</translation>
    </message>
    <message>
        <source>Do you want to delete selected filter?</source>
        <translation>Удалить выбранный фильтр?</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is empty.</source>
        <comment>a field&apos;s value</comment>
        <translation>«%1» — пустое значение.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a part of &quot;%2&quot;.</source>
        <comment>the first field&apos;s text occurs in the second&apos;s</comment>
        <translation>«%1» является частью «%2».</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is incorrect.</source>
        <comment>a field&apos;s value</comment>
        <translation>«%1» — некорректное значение.</translation>
    </message>
    <message>
        <source>Event_Log_Filter_%1</source>
        <comment>proposed name of a saved filter</comment>
        <translation>Фильтр_журнала_событий_%1</translation>
    </message>
    <message>
        <source>Period start</source>
        <translation>Начало периода</translation>
    </message>
    <message>
        <source>Period end</source>
        <translation>Конец периода</translation>
    </message>
    <message>
        <source>Find parameter</source>
        <translation>Поиск параметра</translation>
    </message>
</context>
<context>
    <name>GoToTimeDialog</name>
    <message>
        <source>Go to time</source>
        <translation>Перейти ко времени</translation>
    </message>
    <message>
        <source>The first event at or after this time is shown.</source>
        <translation>Будет показано первое событие в это время или позже.</translation>
    </message>
    <message>
        <source>Date and &amp;time:</source>
        <translation>&amp;Дата и время:</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
</context>
<context>
    <name>JournalSettings</name>
    <message>
        <source>Dialog</source>
        <translation>Диалог</translation>
    </message>
    <message>
        <source>Main log file</source>
        <translation>Основной файл журнала</translation>
    </message>
    <message>
        <source>Choose the main log file</source>
        <translation>Выбрать основной файл журнала</translation>
    </message>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <source>Messages per page</source>
        <translation>Сообщений на странице</translation>
    </message>
    <message>
        <source>New main log file path will be applied after restart.</source>
        <translation>Новый путь к основному файлу журнала будет применён после перезапуска.</translation>
    </message>
    <message>
        <source>Application settings</source>
        <translation>Настройки приложения</translation>
    </message>
</context>
<context>
    <name>LoadWarning</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>Please wait, file loading is in progress...</source>
        <translation>Подождите, идёт загрузка файла...</translation>
    </message>
    <message>
        <source>%1% read</source>
        <translation>прочитано %1%</translation>
    </message>
</context>
<context>
    <name>LogInfoWindow</name>
    <message>
        <source>Log file information</source>
        <translation>Сведения о файле журнала</translation>
    </message>
    <message>
        <source>Log name:</source>
        <translation>Имя журнала:</translation>
    </message>
    <message>
        <source>Log size:</source>
        <translation>Размер журнала:</translation>
    </message>
    <message>
        <source>Birth time:</source>
        <translation>Время создания:</translation>
    </message>
    <message>
        <source>Last modified:</source>
        <translation>Последнее изменение:</translation>
    </message>
    <message>
        <source>Rotation scheme:</source>
        <translation>Схема ротации:</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>неизвестно</translation>
    </message>
    <message>
        <source>Malformed lines:</source>
        <translation>Повреждённые строки:</translation>
    </message>
    <message>
        <source>daily</source>
        <translation>ежедневно</translation>
    </message>
    <message>
        <source>weekly</source>
        <translation>еженедельно</translation>
    </message>
    <message>
        <source>monthly</source>
        <translation>ежемесячно</translation>
    </message>
    <message>
        <source>yearly</source>
        <translation>ежегодно</translation>
    </message>
    <message numerus="yes">
        <source>%n skipped</source>
        <comment>malformed lines</comment>
        <translation>
            <numerusform>%n пропущена</numerusform>
            <numerusform>%n пропущены</numerusform>
            <numerusform>%n пропущено</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n kilobytes</source>
        <translation>
            <numerusform>%n КБ</numerusform>
            <numerusform>%n КБ</numerusform>
            <numerusform>%n КБ</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n megabytes</source>
        <translation>
            <numerusform>%n МБ</numerusform>
            <numerusform>%n МБ</numerusform>
            <numerusform>%n МБ</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n gigabytes</source>
        <translation>
            <numerusform>%n ГБ</numerusform>
            <numerusform>%n ГБ</numerusform>
            <numerusform>%n ГБ</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n bytes</source>
        <translation>
            <numerusform>%n байт</numerusform>
            <numerusform>%n байта</numerusform>
            <numerusform>%n байт</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 gigabytes</source>
        <comment>a size, possibly fractional</comment>
        <translation>%1 ГБ</translation>
    </message>
    <message>
        <source>%1 megabytes</source>
        <comment>a size, possibly fractional</comment>
        <translation>%1 МБ</translation>
    </message>
</context>
<context>
    <name>LogWidget</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>Can&apos;t open log file.</source>
        <translation>Не удаётся открыть файл журнала.</translation>
    </message>
    <message>
        <source>The compressed file unpacks to more than %1; unpacking was stopped there.</source>
        <translation>Сжатый файл распаковывается более чем в %1; распаковка на этом остановлена.</translation>
    </message>
    <message>
        <source>Unpacking was stopped: it would have left less than %1 free in %2.</source>
        <translation>Распаковка остановлена: в %2 осталось бы свободными меньше %1.</translation>
    </message>
    <message>
        <source>The compressed file is damaged or incomplete.</source>
        <translation>Сжатый файл повреждён или неполон.</translation>
    </message>
    <message>
        <source>Unpacking the compressed log file…</source>
        <translation>Распаковка сжатого файла журнала…</translation>
    </message>
    <message>
        <source>Events loading failed.</source>
        <translation>Не удалось загрузить события.</translation>
    </message>
    <message>
        <source>You have no permission to read this file.</source>
        <translation>У вас нет прав на чтение этого файла.</translation>
    </message>
    <message>
        <source>This is a folder, not a file.</source>
        <translation>Это папка, а не файл.</translation>
    </message>
    <message>
        <source>This is not a regular file but a pipe, socket or device.</source>
        <translation>Это не обычный файл, а канал, сокет или устройство.</translation>
    </message>
    <message>
        <source>This file is not an events journal: none of its lines is an event.</source>
        <translation>Этот файл не является журналом событий: ни одна его строка не является событием.</translation>
    </message>
    <message>
        <source>The file does not exist.</source>
        <translation>Файл не существует.</translation>
    </message>
    <message>
        <source>The file could not be read.</source>
        <translation>Не удалось прочитать файл.</translation>
    </message>
    <message>
        <source>Events: %1</source>
        <translation>Событий: %1</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>События</translation>
    </message>
    <message>
        <source>No event happened at or after %1.</source>
        <translation>Нет событий в %1 или позже.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>System events journal</source>
        <translation>Журнал системных событий</translation>
    </message>
    <message>
        <source>Clear table</source>
        <translation>Очистить таблицу</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Копировать</translation>
    </message>
    <message>
        <source>Edit list</source>
        <translation>Изменить список</translation>
    </message>
    <message>
        <source>Event details</source>
        <translation>Подробности события</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Выход</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспорт</translation>
    </message>
    <message>
        <source>Log export</source>
        <translation>Экспорт журнала</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Фильтр</translation>
    </message>
    <message>
        <source>Message filter</source>
        <translation>Фильтр сообщений</translation>
    </message>
    <message>
        <source>Filter by message ID</source>
        <translation>Фильтровать по идентификатору сообщения</translation>
    </message>
    <message>
        <source>Notification settings</source>
        <translation>Настройки уведомлений</translation>
    </message>
    <message>
        <source>Disable notifications sending</source>
        <translation>Отключить отправку уведомлений</translation>
    </message>
    <message>
        <source>Enable notifications sending</source>
        <translation>Включить отправку уведомлений</translation>
    </message>
    <message>
        <source>Add to favorites</source>
        <translation>Добавить в избранное</translation>
    </message>
    <message>
        <source>Remove from favorites</source>
        <translation>Удалить из избранного</translation>
    </message>
    <message>
        <source>Show log info</source>
        <translation>Сведения о журнале</translation>
    </message>
    <message>
        <source>Open log</source>
        <translation>Открыть журнал</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Печать</translation>
    </message>
    <message>
        <source>Refresh log</source>
        <translation>Обновить журнал</translation>
    </message>
    <message>
        <source>Show details</source>
        <translation>Показать подробности</translation>
    </message>
    <message>
        <source>Application settings</source>
        <translation>Настройки приложения</translation>
    </message>
    <message>
        <source>Start reading</source>
        <translation>Начать чтение</translation>
    </message>
    <message>
        <source>Stop reading</source>
        <translation>Остановить чтение</translation>
    </message>
    <message>
        <source>Summary of events</source>
        <translation>Сводка событий</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Файл</translation>
    </message>
    <message>
        <source>Recently opened files</source>
        <translation>Недавно открытые файлы</translation>
    </message>
    <message>
        <source>&amp;Log</source>
        <translation>&amp;Журнал</translation>
    </message>
    <message>
        <source>Saved filters</source>
        <translation>Сохранённые фильтры</translation>
    </message>
    <message>
        <source>Favorite events</source>
        <translation>Избранные события</translation>
    </message>
    <message>
        <source>&amp;Settings</source>
        <translation>&amp;Настройка</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Панель инструментов</translation>
    </message>
    <message>
        <source>MAIN LOG</source>
        <translation>ОСНОВНОЙ ЖУРНАЛ</translation>
    </message>
    <message>
        <source>Print events</source>
        <translation>Печать событий</translation>
    </message>
    <message>
        <source>Export events</source>
        <translation>Экспорт событий</translation>
    </message>
    <message>
        <source>Close tab</source>
        <translation>Закрыть вкладку</translation>
    </message>
    <message>
        <source>Next tab</source>
        <translation>Следующая вкладка</translation>
    </message>
    <message>
        <source>Previous tab</source>
        <translation>Предыдущая вкладка</translation>
    </message>
    <message>
        <source>Reload log</source>
        <translation>Перечитать журнал</translation>
    </message>
    <message>
        <source>Printing… %1 %</source>
        <translation>Печать… %1 %</translation>
    </message>
    <message numerus="yes">
        <source>Printed %n events.</source>
        <translation>
            <numerusform>Напечатано %n событие.</numerusform>
            <numerusform>Напечатано %n события.</numerusform>
            <numerusform>Напечатано %n событий.</numerusform>
        </translation>
    </message>
    <message>
        <source>Exporting… %1 %</source>
        <translation>Экспорт… %1 %</translation>
    </message>
    <message>
        <source>Could not write to %1.</source>
        <translation>Не удалось записать в %1.</translation>
    </message>
    <message numerus="yes">
        <source>Exported %n events to %1.</source>
        <translation>
            <numerusform>Экспортировано %n событие в %1.</numerusform>
            <numerusform>Экспортировано %n события в %1.</numerusform>
            <numerusform>Экспортировано %n событий в %1.</numerusform>
        </translation>
    </message>
    <message>
        <source>The settings could not be saved to %1.</source>
        <translation>Не удалось сохранить настройки в %1.</translation>
    </message>
    <message>
        <source>The events could not be printed to %1.</source>
        <translation>Не удалось напечатать события в %1.</translation>
    </message>
    <message>
        <source>The events could not be exported to %1.</source>
        <translation>Не удалось экспортировать события в %1.</translation>
    </message>
    <message>
        <source>Go to time…</source>
        <translation>Перейти ко времени…</translation>
    </message>
    <message>
        <source>Go to time</source>
        <translation>Перейти ко времени</translation>
    </message>
    <message>
        <source>Show timeline</source>
        <translation>Показывать шкалу времени</translation>
    </message>
    <message>
        <source>%1 (filtered)</source>
        <comment>title of a tab that filters another tab&apos;s events</comment>
        <translation>%1 (отфильтровано)</translation>
    </message>
</context>
<context>
    <name>NotificationController</name>
    <message>
        <source>nimb-admin-events is not installed.</source>
        <translation>Модуль nimb-admin-events не установлен.</translation>
    </message>
    <message>
        <source>Stop sending notifications for events with the ID %1?</source>
        <translation>Прекратить отправку уведомлений о событиях с идентификатором %1?</translation>
    </message>
    <message>
        <source>KAuth returned an error code: %1</source>
        <translation>KAuth вернул код ошибки: %1</translation>
    </message>
    <message>
        <source>The logging service could not be restarted: %1</source>
        <translation>Не удалось перезапустить службу журналирования: %1</translation>
    </message>
</context>
<context>
    <name>PageWidget</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
    <message>
        <source>First page</source>
        <translation>Первая страница</translation>
    </message>
    <message>
        <source>Previous page</source>
        <translation>Предыдущая страница</translation>
    </message>
    <message>
        <source>of 1</source>
        <translation>из 1</translation>
    </message>
    <message>
        <source>Next page</source>
        <translation>Следующая страница</translation>
    </message>
    <message>
        <source>Last page</source>
        <translation>Последняя страница</translation>
    </message>
    <message>
        <source> of %1</source>
        <translation> из %1</translation>
    </message>
    <message>
        <source>Page number</source>
        <translation>Номер страницы</translation>
    </message>
</context>
<context>
    <name>PrintedFile</name>
    <message>
        <source>The printout was cut short while it was being drawn.</source>
        <translation>Печать прервалась, не успев завершиться.</translation>
    </message>
</context>
<context>
    <name>PrinterDialog</name>
    <message>
        <source>Print events</source>
        <translation>Печать событий</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Печать</translation>
    </message>
    <message>
        <source>Printing all messages</source>
        <translation>Печать всех сообщений</translation>
    </message>
    <message>
        <source>Attention!
Trying to print whole journal can cause lack of memory and undefined behavior of printing subsystem, this application or other components.</source>
        <translation>Внимание!
Попытка напечатать весь журнал может привести к нехватке памяти и непредсказуемому поведению подсистемы печати, этого приложения или других компонентов.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>emergency</source>
        <translation>авария</translation>
    </message>
    <message>
        <source>alert</source>
        <translation>тревога</translation>
    </message>
    <message>
        <source>critical</source>
        <translation>критическая ошибка</translation>
    </message>
    <message>
        <source>error</source>
        <translation>ошибка</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>предупреждение</translation>
    </message>
    <message>
        <source>notice</source>
        <translation>уведомление</translation>
    </message>
    <message>
        <source>informational</source>
        <translation>информационное</translation>
    </message>
    <message>
        <source>debug</source>
        <translation>отладка</translation>
    </message>
    <message>
        <source>MAC level: %1, MIC level: %2, MAC categories: %3</source>
        <translation>Мандатный уровень: %1, уровень целостности: %2, мандатные категории: %3</translation>
    </message>
    <message>
        <source>Comma-separated category numbers</source>
        <translation>Номера категорий через запятую</translation>
    </message>
    <message>
        <source>Account type</source>
        <translation>Тип учётной записи</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Действие</translation>
    </message>
    <message>
        <source>Arguments</source>
        <translation>Аргументы</translation>
    </message>
    <message>
        <source>Event initiator ID</source>
        <translation>Идентификатор инициатора события</translation>
    </message>
    <message>
        <source>MAC categories</source>
        <translation>Мандатные категории</translation>
    </message>
    <message>
        <source>Command prompt arguments</source>
        <translation>Аргументы командной строки</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Команда</translation>
    </message>
    <message>
        <source>Connection name</source>
        <translation>Имя подключения</translation>
    </message>
    <message>
        <source>Authorization attempts maximum</source>
        <translation>Максимальное число попыток авторизации</translation>
    </message>
    <message>
        <source>Directory</source>
        <translation>Каталог</translation>
    </message>
    <message>
        <source>Event ending time</source>
        <translation>Время окончания события</translation>
    </message>
    <message>
        <source>Event triggered program</source>
        <translation>Программа, вызвавшая событие</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Файл</translation>
    </message>
    <message>
        <source>Gateway</source>
        <translation>Шлюз</translation>
    </message>
    <message>
        <source>Group ID</source>
        <translation>Идентификатор группы</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Группа</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Узел</translation>
    </message>
    <message>
        <source>Interface</source>
        <translation>Интерфейс</translation>
    </message>
    <message>
        <source>IP-address</source>
        <translation>IP-адрес</translation>
    </message>
    <message>
        <source>Old IP-address</source>
        <translation>Прежний IP-адрес</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>Ключ</translation>
    </message>
    <message>
        <source>MAC level</source>
        <translation>Мандатный уровень</translation>
    </message>
    <message>
        <source>Manufacturer</source>
        <translation>Производитель</translation>
    </message>
    <message>
        <source>Access rights</source>
        <translation>Права доступа</translation>
    </message>
    <message>
        <source>Module</source>
        <translation>Модуль</translation>
    </message>
    <message>
        <source>DNS-server</source>
        <translation>DNS-сервер</translation>
    </message>
    <message>
        <source>Subnet mask</source>
        <translation>Маска подсети</translation>
    </message>
    <message>
        <source>Object label</source>
        <translation>Метка объекта</translation>
    </message>
    <message>
        <source>New object label</source>
        <translation>Новая метка объекта</translation>
    </message>
    <message>
        <source>Performed on behalf of a superuser</source>
        <translation>Выполнено от имени суперпользователя</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>да</translation>
    </message>
    <message>
        <source>no</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>Пакет</translation>
    </message>
    <message>
        <source>Object path</source>
        <translation>Путь к объекту</translation>
    </message>
    <message>
        <source>Process ID</source>
        <translation>Идентификатор процесса</translation>
    </message>
    <message>
        <source>Parent process ID</source>
        <translation>Идентификатор родительского процесса</translation>
    </message>
    <message>
        <source>Product ID</source>
        <translation>Идентификатор продукта</translation>
    </message>
    <message>
        <source>Product name</source>
        <translation>Название продукта</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Результат</translation>
    </message>
    <message>
        <source>success</source>
        <translation>успешно</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>неуспешно</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Серийный номер</translation>
    </message>
    <message>
        <source>Signal</source>
        <translation>Сигнал</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Источник</translation>
    </message>
    <message>
        <source>Event starting time</source>
        <translation>Время начала события</translation>
    </message>
    <message>
        <source>Current state</source>
        <translation>Текущее состояние</translation>
    </message>
    <message>
        <source>enabled</source>
        <translation>включено</translation>
    </message>
    <message>
        <source>disabled</source>
        <translation>отключено</translation>
    </message>
    <message>
        <source>Subject label</source>
        <translation>Метка субъекта</translation>
    </message>
    <message>
        <source>Operation success status</source>
        <translation>Признак успешности операции</translation>
    </message>
    <message>
        <source>Failed authorization attempts</source>
        <translation>Неудачные попытки авторизации</translation>
    </message>
    <message>
        <source>Terminal</source>
        <translation>Терминал</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Время</translation>
    </message>
    <message>
        <source>Event type</source>
        <translation>Тип события</translation>
    </message>
    <message>
        <source>User ID</source>
        <translation>Идентификатор пользователя</translation>
    </message>
    <message>
        <source>Undefined information</source>
        <translation>Неопределённые сведения</translation>
    </message>
    <message>
        <source>Record unique ID</source>
        <translation>Уникальный идентификатор записи</translation>
    </message>
    <message>
        <source>UNIX time label</source>
        <translation>Метка времени UNIX</translation>
    </message>
    <message>
        <source>User</source>
        <translation>Пользователь</translation>
    </message>
    <message>
        <source>Vendor ID</source>
        <translation>Идентификатор производителя</translation>
    </message>
</context>
<context>
    <name>SearchParametersEditor</name>
    <message>
        <source>Case sensitive</source>
        <translation>С учётом регистра</translation>
    </message>
    <message>
        <source>Only whole words</source>
        <translation>Только слова целиком</translation>
    </message>
</context>
<context>
    <name>SummaryDialog</name>
    <message>
        <source>Summary of events</source>
        <translation>Сводка событий</translation>
    </message>
    <message>
        <source>Priority</source>
        <translation>Приоритет</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Источник</translation>
    </message>
    <message>
        <source>Hour</source>
        <translation>За час</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>За сутки</translation>
    </message>
    <message>
        <source>Week</source>
        <translation>За неделю</translation>
    </message>
</context>
<context>
    <name>TextViewWindow</name>
    <message>
        <source>Text view</source>
        <translation>Просмотр текста</translation>
    </message>
    <message>
        <source>Parameter value</source>
        <translation>Значение параметра</translation>
    </message>
</context>
<context>
    <name>TimelineWidget</name>
    <message>
        <source>Events per hour or day</source>
        <translation>События по часам или дням</translation>
    </message>
    <message numerus="yes">
        <source>%n events from %1 to %2.
Emergency: %3
Alert: %4
Critical: %5
Error: %6
Warning: %7
Notice: %8
Info: %9
Debug: %10
Unknown priority: %11</source>
        <translation>
            <numerusform>%n событие с %1 по %2.
Авария: %3
Тревога: %4
Критическая ошибка: %5
Ошибка: %6
Предупреждение: %7
Уведомление: %8
Информация: %9
Отладка: %10
Неизвестный приоритет: %11</numerusform>
            <numerusform>%n события с %1 по %2.
Авария: %3
Тревога: %4
Критическая ошибка: %5
Ошибка: %6
Предупреждение: %7
Уведомление: %8
Информация: %9
Отладка: %10
Неизвестный приоритет: %11</numerusform>
            <numerusform>%n событий с %1 по %2.
Авария: %3
Тревога: %4
Критическая ошибка: %5
Ошибка: %6
Предупреждение: %7
Уведомление: %8
Информация: %9
Отладка: %10
Неизвестный приоритет: %11</numerusform>
        </translation>
    </message>
    <message>
        <source>Events per day</source>
        <translation>События по дням</translation>
    </message>
    <message>
        <source>Events per hour</source>
        <translation>События по часам</translation>
    </message>
    <message>
        <source>From %1 to %2</source>
        <translation>С %1 по %2</translation>
    </message>
</context>
</TS>
