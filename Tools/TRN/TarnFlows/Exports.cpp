// exports
