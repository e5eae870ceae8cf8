// The command processor: a key parser, a register of commands, and queues of commands to be executed.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CmdLine/CmdLine.h"
#include "CmdProcessor/ClassFactory.h"
#include "Environment/BoundItem.h"
#include "Environment/Context.h"

namespace CmdProcessor {

class ICommand {
public:
    virtual ~ICommand() = default;
    virtual void Initialize(Environment::IContext* context) = 0;
    /// 0 lets the queue go on.
    virtual int Execute() = 0;
    virtual std::string GetHint() const = 0;
    virtual std::string GetHelpText() const = 0;
    /// Empty keeps the command out of the help page.
    virtual std::string GetDescription() const = 0;
    /// Pattern of the key that puts the command on a queue.
    virtual std::string GetKey() const = 0;
    virtual std::string GetName() const = 0;
    virtual unsigned GetArgumentCount() const = 0;
    virtual std::string GetDeviceName() const = 0;
    virtual Environment::IContext* GetContext() const = 0;
    /// Arguments are numbered from 1.
    virtual std::string GetArgument(int index) const = 0;
    virtual std::string GetArgument(const std::string& name) const = 0;
    virtual void PrintHeadNote() = 0;
    virtual void PrintFootNote() = 0;
    virtual void OnFinished() = 0;
};

/// What describes a command.
struct CommandDescription {
    std::vector<std::string> headNote{};
    std::vector<std::string> footNote{};
    std::vector<std::string> helpNote{};
    std::string hint{};
    std::string key{};
    std::string description{};
    std::string deviceName{};
    std::string name{};
    std::string className{};
    unsigned arguments = 0;
};

class ACommand : public ICommand {
public:
    explicit ACommand(CommandDescription description) : m_description(std::move(description)) {}
    /// Reads the texts of the children "HeadNote", "FootNote" and "Help/Note", the variables of the children "Global"
    /// and "Local", and the attributes "description", "device_name", "key", "name", "arguments", "hint", "class" and
    /// "Help"; only the name must be there.
    /// @throws Environment::DataBinderException* for the first attribute that is missing or no number
    explicit ACommand(const XML::Node& node);
    ACommand(const ACommand&) = delete;
    ACommand& operator=(const ACommand&) = delete;

    /// Puts its variables into the context, and the context's into its own attributes.
    void Initialize(Environment::IContext* context) override;
    /// @throws Common::Exception when it has the name of a class, as no class of that name took the command over
    int Execute() override;
    std::string GetHint() const override { return m_description.hint; }
    std::string GetHelpText() const override;
    std::string GetDescription() const override { return m_description.description; }
    std::string GetKey() const override { return m_description.key; }
    std::string GetName() const override { return m_description.name; }
    unsigned GetArgumentCount() const override { return m_description.arguments; }
    std::string GetDeviceName() const override { return m_description.deviceName; }
    Environment::IContext* GetContext() const override { return m_context; }
    std::string GetArgument(int index) const override;
    std::string GetArgument(const std::string& name) const override;
    void PrintHeadNote() override;
    void PrintFootNote() override;
    void OnFinished() override {}

protected:
    Environment::Variables m_global;
    Environment::Variables m_local;

private:
    void BindItems(const XML::Node& node);

    Environment::IContext* m_context = nullptr;                     // not owned
    std::vector<std::unique_ptr<Environment::ABoundItem>> m_items;  // fill the description
    CommandDescription m_description;
};

/// The classes that a command of a profile may name.
using CommandFactory = Utilities::Singleton<Factory::ClassFactory<ICommand, std::string, const XML::Node*>>;

/// A command on a queue, with its positional arguments "1", "2", ...
struct Invocation {
    CountedPtr<ICommand> command;
    CountedPtr<Environment::Variables> arguments;
};
using Queue = std::list<Invocation>;

class Processor {
public:
    /// @param context  not owned, may be null
    explicit Processor(Environment::IContext* context)
        : m_parser(CmdLine::Parser::Leftovers::Refused), m_context(context) {}

    /// Puts a command on a queue for each token that matches the command's key.
    class CmdLineKey : public CmdLine::AKey {
    public:
        CmdLineKey(const CountedPtr<ICommand>& command, Queue* queue)
            : AKey(command->GetKey()), m_command(command), m_queue(queue) {}
        void Parse(CmdLine::TokenList& tokens) override;

    private:
        CountedPtr<ICommand> m_command;
        Queue* m_queue;
    };

    /// Stores a command under its name, in the place of one of that name; on request with a key for it.
    void Register(const CountedPtr<ICommand>& command, bool makeKey, bool atFront, Queue* queue);
    /// Registers a command, with a key, for the queue `id`.
    void AddCommand(const CountedPtr<ICommand>& command, bool atFront, const std::string& id);
    /// Adds a plain key. A command of the profile that has the key's name as its attribute "key" describes it on the
    /// help page. @param profile  may be null
    void AddKey(const CountedPtr<CmdLine::IKey>& key, const XML::Node* profile, bool atFront);
    /// Registers the commands of a profile, with keys, for the queue that its attribute "id" names. A command is made
    /// by its class; one of an unknown class fails when it is executed.
    void LoadProfile(const XML::Node& profile);
    /// Executes the queue `id` up to the first result that isn't 0, which is the answer; the rest stays queued.
    /// @return -1 without a context, 0 for an empty queue
    int Execute(const std::string& id);

    /// Null for an unknown name.
    CountedPtr<ICommand> FindCommand(const std::string& name) const;
    CmdLine::Parser& GetParser() { return m_parser; }
    Queue& GetQueue(const std::string& id) { return m_queues[id]; }

    // The pages still hold references to variables, for the caller to expand.
    std::string GetHelpPage() const;
    std::string GetUserGuide() const;
    std::string GetHelpItem(const std::string& name) const;

private:
    int ExecuteFirst(Queue& queue);

    std::map<std::string, CountedPtr<ICommand>> m_commands;
    std::map<std::string, Queue> m_queues;
    CmdLine::Parser m_parser;
    Environment::IContext* m_context;
};

}  // namespace CmdProcessor
