<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>EngineBanner</name>
    <message>
        <source>Ollama is not on this Mac yet</source>
        <translation>Ollama is not on this computer yet</translation>
    </message>
</context>
<context>
    <name>EngineCard</name>
    <message>
        <source>Ollama was not found on this Mac.</source>
        <translation>Ollama was not found on this computer.</translation>
    </message>
</context>
<context>
    <name>EngineInstallView</name>
    <message>
        <source>Install Ollama (about 170 MB)</source>
        <translation>Install Ollama (1 to 2 GB)</translation>
    </message>
</context>
<context>
    <name>FitBadge</name>
    <message>
        <source>Too big for this Mac</source>
        <translation>Too big for this computer</translation>
    </message>
    <message>
        <source>Fit rule: a model is a good fit when its download size is under 35% of this Mac&apos;s memory, tight under 60%, and otherwise too big.</source>
        <translation>Fit rule: a model is a good fit when its download size is under 35% of this computer&apos;s memory, tight under 60%, and otherwise too big.</translation>
    </message>
</context>
<context>
    <name>Friendly</name>
    <message>
        <source>This model needs more memory than your Mac has free. Try a smaller model or a shorter context length.</source>
        <translation>This model needs more memory than your computer has free. Try a smaller model or a shorter context length.</translation>
    </message>
</context>
<context>
    <name>GuideView</name>
    <message>
        <source>Ollama is ready on this Mac.</source>
        <translation>Ollama is ready on this computer.</translation>
    </message>
    <message>
        <source>Three steps and you are chatting with an AI that runs only on this Mac.</source>
        <translation>Three steps and you are chatting with an AI that runs only on this computer.</translation>
    </message>
</context>
<context>
    <name>ModelRow</name>
    <message>
        <source>Best pick for this Mac&apos;s memory</source>
        <translation>Best pick for this computer&apos;s memory</translation>
    </message>
</context>
<context>
    <name>ModelsView</name>
    <message>
        <source>This Mac: %1 memory</source>
        <translation>This computer: %1 memory</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Show status in the menu bar</source>
        <translation>Show status in the system tray</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Tarnwick controls Ollama on your Mac: install the engine, download models and chat, all offline.</source>
        <translation>Tarnwick controls Ollama on your computer: install the engine, download models and chat, all offline.</translation>
    </message>
</context>
<context>
    <name>StatusCard</name>
    <message>
        <source>Other tools on this Mac can use this address as their Ollama URL.</source>
        <translation>Other tools on this computer can use this address as their Ollama URL.</translation>
    </message>
</context>
<context>
    <name>TranscriptCanvas</name>
    <message>
        <source>Say hello. Everything stays on this Mac.</source>
        <translation>Say hello. Everything stays on this computer.</translation>
    </message>
</context>
</TS>
